// SPDX-License-Identifier: Apache-2.0

#include "app/program/run_guarded.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "app/library/access_point_printer.h"
#include "app/library/usb/usb_device.h"
#include "app/outcome/problem.h"
#include "app/running/cancellation.h"
#include "app/setup/setup_route.h"
#include "app/terminal/console.h"

namespace App {

namespace {

template <class Thrown>
ExitStatus StatusOf(const Thrown& thrown) {
    return RunGuarded([&]() -> ExitStatus { throw Thrown(thrown); });
}

TEST(RunGuarded, ReturnsTheStatusOfWhatItRan) {
    EXPECT_EQ(RunGuarded([] { return kFound; }), kFound);
    EXPECT_EQ(RunGuarded([] { return kNoneFound; }), kNoneFound);
}

TEST(RunGuarded, SaysWhyAndReturnsTheStatusOfWhatEndedIt) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(StatusOf(OutputClosed()), kFound);
    EXPECT_EQ(StatusOf(Interrupted()), kNoneFound);
    EXPECT_EQ(StatusOf(Problem("a problem")), kCouldNotRun);
    EXPECT_EQ(StatusOf(StepFailed("a step")), kCouldNotRun);
    EXPECT_EQ(StatusOf(NoScan("no scan")), kCouldNotRun);
    EXPECT_EQ(StatusOf(NoUsbPrinter("no printer")), kCouldNotRun);
    EXPECT_EQ(StatusOf(std::runtime_error("out of ink")), kCouldNotRun);
    EXPECT_EQ(StatusOf(42), kCouldNotRun);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "devicediscover: interrupted.\n"
              "devicediscover: a problem\n"
              "devicediscover: a step\n"
              "devicediscover: no scan\n"
              "devicediscover: no printer\n"
              "devicediscover: the program cannot go on: out of ink\n"
              "devicediscover: the program cannot go on: an exception of an unknown type\n");
}

}  // namespace

}  // namespace App
