// SPDX-License-Identifier: Apache-2.0

#include "host/PrinterDiscoverAPI/usb/windows/usb_event_queue.h"

#include <gtest/gtest.h>

#include <thread>

namespace PrinterDiscoverAPI {

namespace {

UsbEvent Added(const std::string& path) {
    UsbEvent event{UsbEvent::Kind::added, {}};
    event.printer.path = path;
    return event;
}

TEST(UsbEventQueue, GivesEventsInTheirOrder) {
    UsbEventQueue queue;
    queue.Put(Added("one"));
    queue.Put(Added("two"));
    EXPECT_EQ(queue.Wait().printer.path, "one");
    EXPECT_EQ(queue.Wait().printer.path, "two");
}

TEST(UsbEventQueue, SaysThatEventsWereMissedAfterThoseThatWereNot) {
    UsbEventQueue queue;
    queue.Put(Added("one"));
    queue.Lose();
    queue.Lose();
    queue.Put(Added("two"));
    EXPECT_EQ(queue.Wait().printer.path, "one");
    EXPECT_EQ(queue.Wait().printer.path, "two");
    EXPECT_EQ(queue.Wait().kind, UsbEvent::Kind::missed);
    queue.Put(Added("three"));
    EXPECT_EQ(queue.Wait().printer.path, "three");
}

TEST(UsbEventQueue, EndsTheWaitingNowAndFromNowOn) {
    UsbEventQueue queue;
    std::thread thread([&queue] { queue.Interrupt(); });
    EXPECT_EQ(queue.Wait().kind, UsbEvent::Kind::interrupted);
    thread.join();
    queue.Put(Added("one"));
    EXPECT_EQ(queue.Wait().kind, UsbEvent::Kind::interrupted);
}

}  // namespace

}  // namespace PrinterDiscoverAPI
