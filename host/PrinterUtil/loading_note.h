#pragma once

#include <list>
#include <string>

namespace PrinterUtil {

// Notes, as long as it lives, that a module is being loaded.
class LoadingNote {
public:
    explicit LoadingNote(const std::string& path);
    ~LoadingNote();
    LoadingNote(const LoadingNote&) = delete;
    LoadingNote& operator=(const LoadingNote&) = delete;

    // The path of the one that began last; empty when there is none.
    static std::string Latest();

private:
    std::list<std::string>::iterator own;
};

}  // namespace PrinterUtil
