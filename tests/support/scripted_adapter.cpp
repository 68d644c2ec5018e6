// SPDX-License-Identifier: Apache-2.0

#include "tests/support/scripted_adapter.h"

#include <mutex>

#include "platform/PrinterAdapter/PrinterListProblem.h"
#include "tests/support/host_script.h"

namespace {

using PrinterSdk::PrinterProperty;

struct State {
    const ScriptedHost::HostScript script = ScriptedHost::HostScript::FromEnvironment();
    std::mutex mutex;  // guards all below
    std::vector<PrinterProperty> printers = script.printers;
    bool listIsOffered = true;
    std::vector<std::string> calls;
};

State& TheState() {
    static State& state = *new State;
    return state;
}

void Note(const std::string& call) {
    TheState().script.Play(call);
    const std::lock_guard lock(TheState().mutex);
    TheState().calls.push_back(call);
}

class List : public PrinterSdk::PrinterListProvider {
public:
    void GetPrinterList(std::vector<PrinterProperty>& printers) override {
        Note("GetPrinterList " + std::to_string(printers.size()));
        const std::lock_guard lock(TheState().mutex);
        printers.insert(printers.end(), TheState().printers.begin(), TheState().printers.end());
    }
};

class Adapter : public PrinterSdk::IPrinterAdapter {
public:
    int Open() override { return Noted("Open"); }
    int Close() override { return Noted("Close"); }
    PrinterSdk::IPrintCap* GetPrintCap(const wchar_t*) override { return None("GetPrintCap"); }
    PrinterSdk::IScanCap* GetScanCap(const wchar_t*) override { return None("GetScanCap"); }
    PrinterSdk::ICopyCap* GetCopyCap(const wchar_t*) override { return None("GetCopyCap"); }
    PrinterSdk::PrinterListProvider* GetPrinterListProvider() override {
        Note("GetPrinterListProvider");
        const std::lock_guard lock(TheState().mutex);
        return TheState().listIsOffered ? &list : nullptr;
    }

private:
    static int Noted(const char* operation) {
        Note(operation);
        return 0;
    }
    static std::nullptr_t None(const char* operation) {
        Note(operation);
        return nullptr;
    }

    List list;
};

}  // namespace

namespace ScriptedAdapter {

void Know(std::vector<PrinterProperty> printers) {
    const std::lock_guard lock(TheState().mutex);
    TheState().printers = std::move(printers);
}

void OfferList(bool offered) {
    const std::lock_guard lock(TheState().mutex);
    TheState().listIsOffered = offered;
}

std::vector<std::string> Calls() {
    const std::lock_guard lock(TheState().mutex);
    return TheState().calls;
}

}  // namespace ScriptedAdapter

PrinterSdk::IPrinterAdapter& PrinterSdk::IPrinterAdapter::GetInstance() {
    Note("GetInstance");
    static IPrinterAdapter& instance = *new Adapter;
    return instance;
}

int PrinterListProblem(char* text, std::size_t size) {
    const std::wstring& reason = TheState().script.listProblem;
    const std::string narrow(reason.begin(), reason.end());
    if (text != nullptr && size > 0) {
        text[narrow.copy(text, size - 1)] = '\0';
    }
    return narrow.empty() ? 0 : 1;
}
