// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include "DeviceDiscover/printer_sdk.h"

namespace {

using PrinterSdk::IPrinterAdapter;

TEST(PrinterAdapter, IsOneForTheProcess) {
    EXPECT_EQ(&IPrinterAdapter::GetInstance(), &IPrinterAdapter::GetInstance());
}

TEST(PrinterAdapter, HasOneListOfPrinters) {
    IPrinterAdapter& adapter = IPrinterAdapter::GetInstance();
    ASSERT_NE(adapter.GetPrinterListProvider(), nullptr);
    EXPECT_EQ(adapter.GetPrinterListProvider(), adapter.GetPrinterListProvider());
}

TEST(PrinterAdapter, OffersNothingElse) {
    IPrinterAdapter& adapter = IPrinterAdapter::GetInstance();
    EXPECT_EQ(adapter.Open(), -1);
    EXPECT_EQ(adapter.Close(), -1);
    EXPECT_EQ(adapter.GetPrintCap(L"usb_by_uri"), nullptr);
    EXPECT_EQ(adapter.GetScanCap(nullptr), nullptr);
    EXPECT_EQ(adapter.GetCopyCap(L""), nullptr);
}

}  // namespace
