#include "host/PrinterUtil/loading_note.h"

#include <mutex>

namespace PrinterUtil {

namespace {

struct Notes {
    std::mutex mutex;
    std::list<std::string> paths;
};

// Never destroyed: the process may end while a thread loads a module.
Notes& TheNotes() {
    static Notes& notes = *new Notes;
    return notes;
}

}  // namespace

LoadingNote::LoadingNote(const std::string& path) {
    Notes& notes = TheNotes();
    const std::lock_guard lock(notes.mutex);
    own = notes.paths.insert(notes.paths.end(), path);
}

LoadingNote::~LoadingNote() {
    Notes& notes = TheNotes();
    const std::lock_guard lock(notes.mutex);
    notes.paths.erase(own);
}

std::string LoadingNote::Latest() {
    Notes& notes = TheNotes();
    const std::lock_guard lock(notes.mutex);
    return notes.paths.empty() ? std::string() : notes.paths.back();
}

}  // namespace PrinterUtil
