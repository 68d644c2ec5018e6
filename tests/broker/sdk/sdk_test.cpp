// SPDX-License-Identifier: Apache-2.0

// The interfaces of the printer SDK and the shells around XML nodes. The virtual tables are called
// slot by slot: whoever was built with another compiler's idea of the header relies on their order.

#include <cstring>
#include <type_traits>

#include "DeviceDiscover/printer_sdk.h"
#include "DeviceDiscover/xml.h"
#include "tests/support/broker_test.h"
#include "tests/support/scripted_adapter.h"

namespace PrinterSdk {

struct PrintTaskInfo {};
struct DeviceState {};

}  // namespace PrinterSdk

namespace {

using namespace PrinterSdk;

static_assert(std::is_abstract_v<IPrinterAdapter> && std::is_abstract_v<IPrintCap>);
static_assert(std::is_abstract_v<IScanCap> && std::is_abstract_v<ICopyCap>);
static_assert(std::is_abstract_v<IDeviceChangeListener> && std::is_abstract_v<PrinterListProvider>);
static_assert(!std::is_abstract_v<IPrinterUiListener>);
static_assert(std::has_virtual_destructor_v<IPrinterAdapter>);
static_assert(std::has_virtual_destructor_v<IPrintCap>);
static_assert(std::has_virtual_destructor_v<IScanCap> && std::has_virtual_destructor_v<ICopyCap>);
static_assert(std::has_virtual_destructor_v<IPrinterUiListener>);
static_assert(std::has_virtual_destructor_v<PrinterListProvider>);
static_assert(!std::has_virtual_destructor_v<IDeviceChangeListener>);
static_assert(sizeof(IPrinterAdapter) == sizeof(void*) && sizeof(IPrintCap) == sizeof(void*));
static_assert(sizeof(IScanCap) == sizeof(void*) && sizeof(ICopyCap) == sizeof(void*));
static_assert(sizeof(IPrinterUiListener) == sizeof(void*));
static_assert(sizeof(IDeviceChangeListener) == sizeof(void*));
static_assert(!std::is_polymorphic_v<KzXmlElement> && !std::is_polymorphic_v<KzXmlAttribute>);
static_assert(!std::is_polymorphic_v<KzXMLDocument>);
static_assert(!std::is_default_constructible_v<KzXmlAttribute>);

// A destructor has two slots in the tables of this compiler, other operations one each.
constexpr std::size_t kBehindDestructor = 2;

// Calls what stands in a slot of the object's virtual table.
template <class Result, class... Arguments>
Result CallSlot(void* object, std::size_t slot, Arguments... arguments) {
    void* const* const table = *static_cast<void* const* const*>(object);
    return reinterpret_cast<Result (*)(void*, Arguments...)>(table[slot])(object, arguments...);
}

// Behind the last operation of an interface stands the first that a derived class adds: that says
// how many there are.
constexpr int kAdded = 4711;

class Adapter : public IPrinterAdapter {
public:
    int Open() override { return 1; }
    int Close() override { return 2; }
    IPrintCap* GetPrintCap(const wchar_t*) override { return reinterpret_cast<IPrintCap*>(3); }
    IScanCap* GetScanCap(const wchar_t*) override { return reinterpret_cast<IScanCap*>(4); }
    ICopyCap* GetCopyCap(const wchar_t*) override { return reinterpret_cast<ICopyCap*>(5); }
    PrinterListProvider* GetPrinterListProvider() override {
        return reinterpret_cast<PrinterListProvider*>(6);
    }
    virtual int Added() { return kAdded; }
};

class List : public PrinterListProvider {
public:
    void GetPrinterList(std::vector<PrinterProperty>& printers) override {
        printers.emplace_back().serialNumber = L"from the list";
    }
    virtual int Added() { return kAdded; }
};

class PrintCap : public IPrintCap {
public:
    int PrintDocument(const wchar_t*, int) override { return 1; }
    int PrintImage(const wchar_t*, int) override { return 2; }
    int PauseTask(int) override { return 3; }
    int ResumeTask(int) override { return 4; }
    int CancelTask(int) override { return 5; }
    int GetTaskCount() override { return 6; }
    virtual int Added() { return kAdded; }
};

class ScanCap : public IScanCap {
public:
    int StartScan(const wchar_t*) override { return 1; }
    int CancelScan() override { return 2; }
    int SetResolution(int) override { return 3; }
    int SetColorMode(int) override { return 4; }
    int SetSource(int) override { return 5; }
    int GetState() override { return 6; }
    virtual int Added() { return kAdded; }
};

class CopyCap : public ICopyCap {
public:
    int StartCopy(int) override { return 1; }
    int CancelCopy() override { return 2; }
    int GetState() override { return 3; }
    virtual int Added() { return kAdded; }
};

class DeviceListener final : public IDeviceChangeListener {
public:
    int OnDeviceChange(const wchar_t*, int state) override { return state; }
    virtual int Added() { return kAdded; }
};

class UiListener : public IPrinterUiListener {
public:
    virtual int Added() { return kAdded; }
};

TEST(VirtualTable, OfTheAdapterHasSixOperationsTheLastOfWhichGivesTheList) {
    Adapter adapter;
    EXPECT_EQ(CallSlot<int>(&adapter, kBehindDestructor + 0), 1);
    EXPECT_EQ(CallSlot<int>(&adapter, kBehindDestructor + 1), 2);
    for (std::size_t slot = 2; slot < 6; ++slot) {
        EXPECT_EQ(CallSlot<void*>(&adapter, kBehindDestructor + slot, L"printer"),
                  reinterpret_cast<void*>(slot + 1));
    }
    EXPECT_EQ(CallSlot<int>(&adapter, kBehindDestructor + 6), kAdded);
}

TEST(VirtualTable, OfTheListHasOneOperation) {
    List list;
    std::vector<PrinterProperty> printers;
    CallSlot<void>(&list, kBehindDestructor, &printers);
    ASSERT_EQ(printers.size(), 1u);
    EXPECT_EQ(printers[0].serialNumber, L"from the list");
    EXPECT_EQ(CallSlot<int>(&list, kBehindDestructor + 1), kAdded);
}

template <class Object>
void ExpectOperations(int count) {
    Object object;
    for (int operation = 1; operation <= count; ++operation) {
        EXPECT_EQ(
            CallSlot<int>(&object, kBehindDestructor + static_cast<std::size_t>(operation - 1),
                          static_cast<void*>(nullptr), 0),
            operation);
    }
    EXPECT_EQ(CallSlot<int>(&object, kBehindDestructor + static_cast<std::size_t>(count)), kAdded);
}

TEST(VirtualTable, OfWhatAPrinterCanHasSixSixAndThreeOperations) {
    ExpectOperations<PrintCap>(6);
    ExpectOperations<ScanCap>(6);
    ExpectOperations<CopyCap>(3);
}

TEST(VirtualTable, OfTheDeviceListenerHasOneOperationAndNoDestructor) {
    DeviceListener listener;
    EXPECT_EQ(CallSlot<int>(&listener, 0, L"device", 77), 77);
    EXPECT_EQ(CallSlot<int>(&listener, 1), kAdded);
}

TEST(VirtualTable, OfTheUiListenerHasTwelveOperationsThatReturnZero) {
    UiListener listener;
    for (std::size_t slot = 0; slot < 12; ++slot) {
        EXPECT_EQ(CallSlot<int>(&listener, kBehindDestructor + slot, static_cast<void*>(nullptr),
                                static_cast<void*>(nullptr), static_cast<void*>(nullptr)),
                  0);
    }
    EXPECT_EQ(CallSlot<int>(&listener, kBehindDestructor + 12), kAdded);
}

TEST(VirtualTable, OfTheUiListenerIsReachedByName) {
    IPrinterUiListener listener;
    PrinterProperty printer;
    std::string value;
    std::vector<PrintTaskInfo> tasks;
    EXPECT_EQ(listener.OnCopyDoneCb(1), 0);
    EXPECT_EQ(listener.OnDocPrintDoneCb(L"file", 1, 2), 0);
    EXPECT_EQ(listener.OnErrorCb(1), 0);
    EXPECT_EQ(listener.OnImgPrintDoneCb(L"file", 1, 2), 0);
    EXPECT_EQ(listener.OnPrintTaskListRefresh(tasks), 0);
    EXPECT_EQ(listener.OnPrinterStateNotify(printer, DeviceState{}), 0);
    EXPECT_EQ(listener.OnPrinterDeleted(printer, 1), 0);
    EXPECT_EQ(listener.OnPrinterGetInfoCb(SettingItem{}, 1, value), 0);
    EXPECT_EQ(listener.OnPrinterListChangedRefresh(printer, true), 0);
    EXPECT_EQ(listener.OnPrinterSetCtrlCb(SettingItem{}, 1), 0);
    EXPECT_EQ(listener.OnScanFinishCb(L"file", 1, 2), 0);
    EXPECT_EQ(listener.OnScanProcessCb(1), 0);
}

// Constructors, copies and destructors come from the library.
template <class Object>
void ExpectCopies() {
    const Object first;
    Object second(first);
    second = first;
    auto* const third = new Object(second);
    *third = *third;
    delete third;
}

TEST(Interfaces, AreMadeCopiedAndDestroyed) {
    ExpectCopies<Adapter>();
    ExpectCopies<PrintCap>();
    ExpectCopies<ScanCap>();
    ExpectCopies<CopyCap>();
    ExpectCopies<UiListener>();
    DeviceListener listener;
    DeviceListener copy(listener);
    copy = listener;
    EXPECT_EQ(copy.OnDeviceChange(L"", 5), 5);
}

TEST(Interfaces, AreDestroyedThroughTheirBase) {
    static int destroyed = 0;
    class Counted : public UiListener {
    public:
        ~Counted() override { ++destroyed; }
    };
    const IPrinterUiListener* const listener = new Counted;
    delete listener;
    EXPECT_EQ(destroyed, 1);
}

TEST(Interfaces, HaveTheAdapterOfTheApplicationsLibrary) {
    EXPECT_EQ(&IPrinterAdapter::GetInstance(), &IPrinterAdapter::GetInstance());
    EXPECT_NE(IPrinterAdapter::GetInstance().GetPrinterListProvider(), nullptr);
    EXPECT_EQ(ScriptedAdapter::Calls().back(), "GetPrinterListProvider");
}

// The pointer that a shell holds: its only member.
template <class Shell>
const void* PointerIn(const Shell& shell) {
    static_assert(sizeof shell == sizeof(void*));
    const void* pointer;
    std::memcpy(&pointer, &shell, sizeof pointer);
    return pointer;
}

template <class Node>
Node* NodeAt(std::uintptr_t address) {
    return reinterpret_cast<Node*>(address);
}

TEST(XmlShell, OfAnElementHoldsWhatItIsGiven) {
    auto* const node = NodeAt<tinyxml2::XMLElement>(0x1000);
    EXPECT_EQ(PointerIn(KzXmlElement()), nullptr);
    const KzXmlElement element(node);
    EXPECT_EQ(PointerIn(element), node);
    EXPECT_EQ(PointerIn(KzXmlElement(element)), node);
    KzXmlElement other;
    EXPECT_EQ(&(other = element), &other);
    EXPECT_EQ(PointerIn(other), node);
    const KzXmlElement& itself = other;
    other = itself;
    EXPECT_EQ(PointerIn(other), node);
}

TEST(XmlShell, OfAnAttributeHoldsWhatItIsGiven) {
    auto* const node = NodeAt<tinyxml2::XMLAttribute>(0x2000);
    const KzXmlAttribute attribute(node);
    EXPECT_EQ(PointerIn(attribute), node);
    EXPECT_EQ(PointerIn(KzXmlAttribute(attribute)), node);
    KzXmlAttribute other(nullptr);
    EXPECT_EQ(PointerIn(other), nullptr);
    EXPECT_EQ(&(other = attribute), &other);
    EXPECT_EQ(PointerIn(other), node);
}

TEST(XmlShell, OfADocumentPointsAtNothing) {
    alignas(KzXMLDocument) unsigned char room[sizeof(KzXMLDocument)];
    std::memset(room, 0x5A, sizeof room);
    const auto* const document = new (room) KzXMLDocument;
    const void* leading;
    std::memcpy(&leading, document, sizeof leading);
    EXPECT_EQ(leading, nullptr);
}

}  // namespace
