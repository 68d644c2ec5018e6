// SPDX-License-Identifier: Apache-2.0

#include "tests/host/PrinterUtil/printer_util_fixture.h"

namespace {

using HostTest::ListOf;
using HostTest::Utf8;
using HostTest::Write;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class VendorListTest : public HostTest::PrinterUtilTest {
protected:
    // Expects the list to be refused as a whole, with one line that says `what`.
    void ExpectRefused(const std::string& what) {
        EXPECT_THAT(ProductIds(), IsEmpty());
        EXPECT_EQ(result, -1);
        EXPECT_THAT(Errors(), ElementsAre(AllOf(HasSubstr(Utf8(ListFile())), HasSubstr(what))));
        EXPECT_THAT(PrinterUtil::DescribeVendorList().problems, ElementsAre(HasSubstr(what)));
    }
};

}  // namespace

TEST_F(VendorListTest, GivesEveryVendorWithAllItsTexts) {
    WriteList(R"({"vendors": [
        {"productId": "P-1", "vendorName": "one", "scanModuleName": "one_scan",
         "usbIdList": "VID_1234&PID_ABCD VID_1234&PID_ABCE"},
        {"productId": "P\u00e92", "vendorName": "two", "scanModuleName": "two_scan"}]})");
    std::vector<VendorInfo> vendors(1);
    EXPECT_EQ(VendorDllMgr::GetInstance().GetCurrentSupportList(vendors), 0);
    ASSERT_THAT(vendors, SizeIs(3)) << "the vendors are appended";
    EXPECT_EQ(vendors[1].productId, "P-1");
    EXPECT_EQ(vendors[1].vendorName, "one");
    EXPECT_EQ(vendors[1].scanModuleName, "one_scan");
    EXPECT_EQ(vendors[1].usbIdList, "VID_1234&PID_ABCD VID_1234&PID_ABCE");
    EXPECT_EQ(vendors[1].reserved1 + vendors[1].reserved2, "");
    EXPECT_EQ(vendors[2].productId,
              "P\xC3\xA9"
              "2");
    EXPECT_EQ(vendors[2].usbIdList, "-");
    EXPECT_THAT(Errors(), IsEmpty());
}

TEST_F(VendorListTest, AcceptsAListWithoutVendors) {
    WriteList(R"({"vendors": []})");
    EXPECT_THAT(ProductIds(), IsEmpty());
    EXPECT_EQ(result, 0);
    EXPECT_THAT(Errors(), IsEmpty());
}

TEST_F(VendorListTest, AcceptsAByteOrderMarkAndUnknownKeys) {
    WriteList(
        "\xEF\xBB\xBF"
        R"({"comment": 1, "vendors": [
        {"productId": "P", "scanModuleName": "s", "comment": {}}]})");
    EXPECT_THAT(ProductIds(), ElementsAre("P"));
    EXPECT_THAT(Errors(), IsEmpty());
}

TEST_F(VendorListTest, KeepsTheLastOfTwoEqualKeys) {
    WriteList(R"({"vendors": [{"productId": "A", "productId": "B", "vendorName": "v"}]})");
    EXPECT_THAT(ProductIds(), ElementsAre("B"));
}

TEST_F(VendorListTest, LooksForModulesBesideTheList) {
    WriteList(R"({"vendors": []})");
    EXPECT_EQ(PrinterUtil::DescribeVendorList().moduleFolder, Utf8(ModuleFolder()));
    WriteList(R"({"moduleFolder": "../other", "vendors": []})");
    EXPECT_EQ(PrinterUtil::DescribeVendorList().moduleFolder,
              Utf8(ListFile().parent_path().parent_path() / "other"));
    std::string absolute = Utf8(user.Folder() / "absolute");
    std::replace(absolute.begin(), absolute.end(), '\\', '/');
    WriteList(R"({"moduleFolder": ")" + absolute + R"(", "vendors": []})");
    EXPECT_EQ(std::filesystem::path(PrinterUtil::DescribeVendorList().moduleFolder),
              user.Folder() / "absolute");
}

TEST_F(VendorListTest, NamesFileLineAndColumnOfAMistake) {
    WriteList("{\n  \"vendors\": [\n    {\"productId\": P}\n  ]\n}\n");
    EXPECT_THAT(ProductIds(), IsEmpty());
    EXPECT_EQ(result, -1);
    EXPECT_THAT(Errors(), ElementsAre(AllOf(HasSubstr(Utf8(ListFile()) + ":3:19: syntax error"),
                                            HasSubstr("invalid literal"))));
}

TEST_F(VendorListTest, NamesThePlaceOfAMistakeInTheFirstLine) {
    WriteList("x");
    ExpectRefused(":1:1: ");
}

TEST_F(VendorListTest, RefusesAnEmptyFile) {
    WriteList("");
    ExpectRefused(":1:1: ");
}

TEST_F(VendorListTest, RefusesACutOffList) {
    WriteList("{\"vendors\": [\n");
    ExpectRefused(":2:1: ");
}

TEST_F(VendorListTest, RefusesTextThatIsNotUtf8) {
    WriteList("{\"vendors\": [{\"productId\": \"\xFF\"}]}");
    ExpectRefused(":1:29: ");
    EXPECT_THAT(PrinterUtil::DescribeVendorList().problems,
                ElementsAre(EndsWith("'\"\xEF\xBF\xBD'")));
}

TEST_F(VendorListTest, RefusesAListThatIsNoObject) {
    WriteList("[]");
    ExpectRefused("not an object but array");
}

TEST_F(VendorListTest, RefusesAListWithoutItsVendors) {
    WriteList("{}");
    ExpectRefused("\"vendors\" is missing");
}

TEST_F(VendorListTest, RefusesVendorsThatAreNoArray) {
    WriteList(R"({"vendors": {}})");
    ExpectRefused("\"vendors\" is not an array but object");
}

TEST_F(VendorListTest, RefusesAModuleFolderThatIsNoText) {
    WriteList(R"({"moduleFolder": 5, "vendors": []})");
    ExpectRefused("\"moduleFolder\" is not a text but number");
}

TEST_F(VendorListTest, RefusesAnEmptyModuleFolder) {
    WriteList(R"({"moduleFolder": "", "vendors": []})");
    ExpectRefused("\"moduleFolder\" is empty");
}

// Such numbers are JSON, but no floating-point number holds them.
TEST_F(VendorListTest, TakesAHugeNumberUnderAKeyThatIsIgnored) {
    for (const std::string number : {"1e999", "-2.5E+400", "123e99999999999999999999"}) {
        WriteList(R"({"x": )" + number +
                  R"(, "vendors": [{"productId": "P", "vendorName": "v", "y": [)" + number +
                  R"(], "usbIdList": "-"}]})");
        EXPECT_THAT(ProductIds(), ElementsAre("P")) << number;
    }
    EXPECT_THAT(Errors(), IsEmpty());
}

TEST_F(VendorListTest, LetsAHugeNumberCostItsVendorOnly) {
    WriteList(R"({"vendors": [{"productId": 1e999, "vendorName": "v"},
                              {"productId": "P 1e999", "vendorName": "v", "usbIdList": "-"}]})");
    EXPECT_THAT(ProductIds(), ElementsAre("P 1e999"));
    EXPECT_THAT(Errors(),
                ElementsAre(HasSubstr("vendors[0]: \"productId\" is not a text but number")));
}

TEST_F(VendorListTest, NamesThePlaceOfAMistakeBehindAHugeNumber) {
    for (const std::string number : {"1e999.5", "1e999x", "01e999", "1e999e1"}) {
        WriteList("{\"vendors\": [], \"x\":" + number + "}");
        EXPECT_THAT(ProductIds(), IsEmpty());
        EXPECT_EQ(result, -1) << number;
    }
}

TEST_F(VendorListTest, LeavesTextAsItIs) {
    WriteList(R"({"vendors": [{"productId": "\"1e999 \\", "vendorName": "v",
                               "usbIdList": "-"}]})");
    EXPECT_THAT(ProductIds(), ElementsAre("\"1e999 \\"));
}

TEST_F(VendorListTest, RefusesAProductIdThatNoRecordHolds) {
    const std::string longest(31, 'P');
    WriteList(R"({"vendors": [{"productId": "P)" + longest +
              R"(", "vendorName": "v"}, {"productId": ")" + longest +
              R"(", "vendorName": "v", "usbIdList": "-"}]})");
    EXPECT_THAT(ProductIds(), ElementsAre(longest));
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr("vendors[0]: \"productId\" has 32 bytes; a "
                                                "device's record has room for 31")));
}

// A vendor without any would keep the broker from the printers of all.
TEST_F(VendorListTest, HandsNoVendorOnWithoutUsbIdentifiers) {
    WriteList(R"({"vendors": [{"productId": "A", "vendorName": "v"},
                              {"productId": "B", "vendorName": "v", "usbIdList": "  "},
                              {"productId": "C", "vendorName": "v", "usbIdList": "-"}]})");
    const PrinterUtil::VendorListReport report = PrinterUtil::DescribeVendorList();
    ASSERT_EQ(report.vendors.size(), 3u);
    for (const VendorInfo& vendor : report.vendors) {
        EXPECT_EQ(vendor.usbIdList, "-");
    }
    const std::string saying =
        ": \"usbIdList\" is missing or empty: this vendor serves no printer on USB; \"-\" says so";
    EXPECT_THAT(report.notes,
                ElementsAre(EndsWith("vendors[0]" + saying), EndsWith("vendors[1]" + saying)));
    EXPECT_THAT(report.problems, IsEmpty());
    EXPECT_THAT(ProductIds(), ElementsAre("A", "B", "C"));
    EXPECT_EQ(result, 0);
    // Behind this line all before it are on the disk.
    HostTest::Log(LOG_LEVEL_ERROR, L"the end");
    EXPECT_THAT(HostTest::Lines(user.LogFile()), Contains(HasSubstr("vendors[1]" + saying)));
}

TEST_F(VendorListTest, PutsUsbIdentifiersInCapitalLetters) {
    WriteList(R"({"vendors": [{"productId": "A", "vendorName": "v",
        "usbIdList": " vid_12ab&Pid_00cd  VID_12AB&PID_00CE Other * VID_12ax&pid_0001"}]})");
    const PrinterUtil::VendorListReport report = PrinterUtil::DescribeVendorList();
    ASSERT_EQ(report.vendors.size(), 1u);
    EXPECT_THAT(
        report.vendors[0].usbIdList,
        testing::StartsWith(" VID_12AB&PID_00CD  VID_12AB&PID_00CE Other * VID_12ax&pid_0001"));
    EXPECT_THAT(
        report.notes,
        ElementsAre(EndsWith("\"usbIdList\": vid_12ab&Pid_00cd is read as VID_12AB&PID_00CD")));
}

TEST_F(VendorListTest, GivesTheTextsOfAVendor) {
    WriteList(R"({"vendors": [{"productId": "A", "vendorName": "v"},
        {"productId": "B", "vendorName": "v", "usbIdList": "-", "services": {"1": "pigeon"},
         "results": {"-7": "no ink",
                     "8": {"meaning": "no idea", "outcome": "unknown"},
                     "StartDeviceScan": {"8": {"meaning": "perhaps", "outcome": "unconfirmed"}}}}]})");
    const auto texts = PrinterUtil::DescribeVendorList().texts;
    ASSERT_THAT(texts, SizeIs(1)) << "a vendor without texts has none";
    EXPECT_EQ(texts[0].productId, "B");
    EXPECT_THAT(texts[0].services, ElementsAre(testing::Pair(1, "pigeon")));
    std::vector<std::string> results;
    for (const PrinterUtil::VendorResult& one : texts[0].results) {
        results.push_back(one.entryPoint + " " + std::to_string(one.result) + " " + one.meaning +
                          " " + std::to_string(static_cast<int>(one.outcome)));
    }
    EXPECT_THAT(results, testing::UnorderedElementsAre(" -7 no ink 0", " 8 no idea 1",
                                                       "StartDeviceScan 8 perhaps 2"));
}

bool IsNoControl(char byte) {
    return static_cast<unsigned char>(byte) >= 0x20 && byte != 0x7F;
}

TEST_F(VendorListTest, LeavesOutAWrongTextAndServesItsVendor) {
    const auto listOf = [](const std::string& key, const std::string& value) {
        return R"({"vendors": [{"productId": "A", "vendorName": "v", "usbIdList": "-", ")" + key +
               R"(": )" + value + "}]}";
    };
    const std::vector<std::pair<std::string, std::string>> wrong{
        {"results", R"([])"},
        {"results", R"({"x": "text"})"},
        {"results", R"({"1x": "text"})"},
        {"results", R"({"99999999999": "text"})"},
        {"results", R"({"StartDeviceScan": {"x": "text"}})"},
        {"results", R"({"1": 2})"},
        {"results", R"({"1": ""})"},
        {"results", R"({"1": "a\u001bb"})"},
        {"results", R"({"1": "a\nb"})"},
        {"results", R"({"1": "a\u009bb"})"},
        {"results", R"({"x\u001b\u007f": "text"})"},
        {"results", R"({"1": {"outcome": "unknown"}})"},
        {"results", R"({"1": {"meaning": "m", "outcome": "blue"}})"},
        {"results", R"({"1": {"meaning": "m", "outcome": {}}})"},
        {"results", R"({"1": ")" + std::string(1001, 'x') + R"("})"},
        {"services", R"("ipp")"},
        {"services", R"({"ipp": "ipp"})"},
        {"services", R"({"1": 1})"}};
    for (const auto& [key, value] : wrong) {
        WriteList(listOf(key, value));
        const PrinterUtil::VendorListReport report = PrinterUtil::DescribeVendorList();
        EXPECT_THAT(report.vendors, SizeIs(1)) << value;
        EXPECT_THAT(report.problems, IsEmpty()) << value;
        EXPECT_THAT(report.texts, IsEmpty()) << value;
        EXPECT_THAT(report.notes, ElementsAre(AllOf(HasSubstr("vendors[0]: \"" + key + "\""),
                                                    HasSubstr("left out"))))
            << value;
        EXPECT_THAT(report.notes.front(), testing::Each(testing::Truly(IsNoControl)));
    }
    WriteList(listOf("results", R"({"1": ")" + std::string(1000, 'x') + R"("})"));
    EXPECT_THAT(PrinterUtil::DescribeVendorList().texts, SizeIs(1));
}

TEST_F(VendorListTest, KeepsNoMoreTextsThanItPromises) {
    std::string results;
    for (int number = 0; number < 2000; ++number) {
        results += (number == 0 ? "\"" : ", \"") + std::to_string(number) + R"(": "text")";
    }
    WriteList(R"({"vendors": [{"productId": "A", "vendorName": "v", "usbIdList": "-",
                  "services": {)" +
              results + R"(}, "results": {)" + results + "}}]}");
    const auto texts = PrinterUtil::DescribeVendorList().texts;
    ASSERT_THAT(texts, SizeIs(1));
    EXPECT_THAT(texts[0].results, SizeIs(500));
    EXPECT_THAT(texts[0].services, SizeIs(500));
}

TEST_F(VendorListTest, RefusesAListThatIsTooLarge) {
    WriteList(R"({"vendors": []})" + std::string(1024 * 1024, ' '));
    ExpectRefused("more than 1048576 bytes");
}

TEST_F(VendorListTest, AcceptsAListOfTheLargestSize) {
    const std::string list = ListOf("P");
    WriteList(list + std::string(1024 * 1024 - list.size(), ' '));
    EXPECT_THAT(ProductIds(), ElementsAre("P"));
}

TEST_F(VendorListTest, RefusesADeeplyNestedListWithoutACrash) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr std::size_t depth = std::size_t{128} * 1024;  // a MiB takes a sanitizer long
#else
    constexpr std::size_t depth = std::size_t{1024} * 1024;
#endif
    WriteList(std::string(depth, '['));
    ExpectRefused(":1:" + std::to_string(depth + 1) + ": ");
}

TEST_F(VendorListTest, RefusesAFolderInPlaceOfTheList) {
    std::filesystem::create_directories(ListFile());
    ExpectRefused("not a regular file");
}

TEST_F(VendorListTest, SaysWhyAListCannotBeRead) {
    WriteList(ListOf("P"));
    // By name: the environment does not lead a process that has changed its user.
    PrinterUtil::UseVendorList(Utf8(ListFile()));
    const HostTest::Unreadable unreadable(ListFile());
    EXPECT_THAT(
        PrinterUtil::DescribeVendorList().problems,
        ElementsAre(AllOf(StartsWith("vendor list " + Utf8(ListFile()) + ": cannot be read: "),
                          EndsWith(HostTest::WhyUnreadable()))));
}

TEST_F(VendorListTest, RefusesAListThatAnyoneMayWriteTo) {
    WriteList(ListOf("P"));
    HostTest::LetAnyoneWrite(ListFile());
    ExpectRefused("anyone may write to it");
}

TEST_F(VendorListTest, RefusesAListInAFolderThatAnyoneMayWriteTo) {
    WriteList(ListOf("P"));
    HostTest::LetAnyoneWrite(ListFile().parent_path());
    ExpectRefused("refused: its folder " + Utf8(ListFile().parent_path()) +
                  ": anyone may write to it");
    EXPECT_EQ(PrinterUtil::DescribeModule("plain_module").module, nullptr);
}

TEST_F(VendorListTest, LeavesOutOnlyTheVendorsWhoseEntriesAreWrong) {
    WriteList(R"({"vendors": [
        {"productId": "A", "vendorName": "v", "scanModuleName": "s"},
        {"vendorName": "v", "scanModuleName": "s"},
        {"productId": 7, "vendorName": "v", "scanModuleName": "s"},
        {"productId": "", "vendorName": "v", "scanModuleName": "s"},
        "vendor",
        null,
        {"productId": "B", "usbIdList": ["VID"], "vendorName": "v", "scanModuleName": "s"},
        {"productId": "C"},
        {"productId": "D\u0000", "vendorName": "v", "scanModuleName": "s"},
        {"productId": "E", "vendorName": "v", "scanModuleName": "s"}]})");
    EXPECT_THAT(ProductIds(), ElementsAre("A", "E"));
    EXPECT_EQ(result, -1);
    const auto where = [this](const std::string& place) {
        return HasSubstr(Utf8(ListFile()) + ": " + place);
    };
    EXPECT_THAT(Errors(), ElementsAre(where("vendors[1]: \"productId\" is missing"),
                                      where("vendors[2]: \"productId\" is not a text but number"),
                                      where("vendors[3]: \"productId\" is missing or empty"),
                                      where("vendors[4]: not an object but string"),
                                      where("vendors[5]: not an object but null"),
                                      where("vendors[6]: \"usbIdList\" is not a text but array"),
                                      where("vendors[7]: names no module"),
                                      where("vendors[8]: \"productId\" holds a NUL")));
}

TEST_F(VendorListTest, ServesTheFirstOfEqualVendorsAndPointsOutTheOthers) {
    WriteList(R"({"vendors": [
        {"productId": "A"},
        {"productId": "A", "vendorName": "first"},
        {"productId": "B", "vendorName": "v"},
        {"productId": "a", "vendorName": "v"},
        {"productId": "A", "vendorName": "second"}]})");
    EXPECT_THAT(ProductIds(), ElementsAre("A", "B", "a"));
    EXPECT_EQ(PrinterUtil::DescribeVendorList().vendors[0].vendorName, "first");
    EXPECT_THAT(PrinterUtil::DescribeVendorList().problems,
                ElementsAre(HasSubstr("vendors[0]: names no module"),
                            "vendor list " + Utf8(ListFile()) +
                                ": vendors[4]: \"productId\" is already that of vendors[1]"));
}

TEST_F(VendorListTest, IsReadAnewEachTime) {
    WriteList("{");
    EXPECT_THAT(ProductIds(), IsEmpty());
    WriteList(ListOf("P"));
    EXPECT_THAT(ProductIds(), ElementsAre("P"));
    EXPECT_EQ(result, 0);
}

TEST_F(VendorListTest, IsDescribedWithoutALogLine) {
    WriteList(R"({"vendors": [{"productId": "A", "vendorName": "v"}, {}]})");
    const PrinterUtil::VendorListReport report = PrinterUtil::DescribeVendorList();
    EXPECT_EQ(report.path, Utf8(ListFile()));
    EXPECT_THAT(report.vendors, SizeIs(1));
    EXPECT_THAT(report.problems, ElementsAre(HasSubstr("vendors[1]")));
    EXPECT_THAT(Errors(), IsEmpty());
}

TEST_F(VendorListTest, LogsWhereAProblemWasMet) {
    WriteList("{}");
    ProductIds();
    EXPECT_THAT(Errors(), ElementsAre(EndsWith("(VendorDllMgr::GetCurrentSupportList)")));
}

TEST_F(VendorListTest, IsTakenFromTheUsersFolder) {
    WriteList(ListOf("users"));
    EXPECT_THAT(ProductIds(), ElementsAre("users"));
}

TEST_F(VendorListTest, ThatTheEnvironmentNamesComesBeforeTheUsers) {
    WriteList(ListOf("users"));
    Write(user.Folder() / "environment.json", ListOf("environment"));
    HostTest::SetVariable("DEVICEDISCOVER_VENDORS", user.Folder() / "environment.json");
    EXPECT_THAT(ProductIds(), ElementsAre("environment"));
}

TEST_F(VendorListTest, ThatTheApplicationNamesComesFirst) {
    WriteList(ListOf("users"));
    Write(user.Folder() / "environment.json", ListOf("environment"));
    HostTest::SetVariable("DEVICEDISCOVER_VENDORS", user.Folder() / "environment.json");
    Write(user.Folder() / "chosen.json", ListOf("chosen"));
    PrinterUtil::UseVendorList(Utf8(user.Folder() / "chosen.json"));
    EXPECT_THAT(ProductIds(), ElementsAre("chosen"));
    PrinterUtil::UseVendorList("");
    EXPECT_THAT(ProductIds(), ElementsAre("environment"));
}

TEST_F(VendorListTest, StaysTheSameWhereverTheProgramGoes) {
    Write(user.Folder() / "chosen.json", ListOf("chosen"));
    std::filesystem::current_path(user.Folder());
    PrinterUtil::UseVendorList("chosen.json");
    std::filesystem::current_path(user.Folder().parent_path());
    EXPECT_THAT(ProductIds(), ElementsAre("chosen"));
}

TEST_F(VendorListTest, ThatWasNamedHasToBeThere) {
    WriteList(ListOf("users"));
    HostTest::SetVariable("DEVICEDISCOVER_VENDORS", user.Folder() / "no.json");
    EXPECT_THAT(ProductIds(), IsEmpty());
    EXPECT_THAT(Errors(), ElementsAre(HasSubstr(Utf8(user.Folder() / "no.json") +
                                                ": there is no such file")));
}

TEST_F(VendorListTest, MayHaveAnyName) {
    const auto file = user.Folder() / HostTest::ForeignName() / "list.json";
    Write(file, ListOf("P"));
    PrinterUtil::UseVendorList(Utf8(file));
    EXPECT_THAT(ProductIds(), ElementsAre("P"));
    EXPECT_EQ(PrinterUtil::DescribeVendorList().path, Utf8(file));
}

TEST_F(VendorListTest, BesideTheLibraryComesLast) {
    const auto program = HostTest::ProgramFileName("vendor_list_teller");
    const auto folder = user.Folder() / "program";
    const auto output = user.Folder() / "output";
    HostTest::ShipLibraries(folder);
    std::filesystem::copy_file(HostTest::ProgramFolder() / program, folder / program);

    ASSERT_EQ(HostTest::Run(folder / program, {Utf8(output)}), 0);
    EXPECT_THAT(HostTest::Lines(output),
                ElementsAre(AllOf(HasSubstr("none found"), HasSubstr(Utf8(ListFile())),
                                  HasSubstr(Utf8(folder / "DeviceDiscover" / "vendors.json")),
                                  HasSubstr("DEVICEDISCOVER_VENDORS"))));

    Write(folder / "DeviceDiscover" / "vendors.json", ListOf("beside"));
    ASSERT_EQ(HostTest::Run(folder / program, {Utf8(output)}), 0);
    EXPECT_THAT(HostTest::Lines(output), ElementsAre("beside"));

    WriteList(ListOf("users"));
    ASSERT_EQ(HostTest::Run(folder / program, {Utf8(output)}), 0);
    EXPECT_THAT(HostTest::Lines(output), ElementsAre("users"));
}

TEST_F(VendorListTest, IsMissedInOneLineWhereTheUserHasNoFolder) {
    const auto program = HostTest::ProgramFileName("vendor_list_teller");
    const auto folder = user.Folder() / "program";
    const auto output = user.Folder() / "output";
    HostTest::ShipLibraries(folder);
    std::filesystem::copy_file(HostTest::ProgramFolder() / program, folder / program);
    HostTest::SetUserFolders("", "");
    HostTest::ClearVariable("HOME");
    ASSERT_EQ(HostTest::Run(folder / program, {Utf8(output)}), 0);
    const std::string beside = Utf8(folder / "DeviceDiscover" / "vendors.json");
    EXPECT_THAT(
        HostTest::Lines(output),
        ElementsAre(AllOf(HasSubstr("none found, neither the user's (there is no folder for it: "),
                          HasSubstr(" unset) nor " + beside + "; "))));
}
