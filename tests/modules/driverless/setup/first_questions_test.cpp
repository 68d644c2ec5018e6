// SPDX-License-Identifier: Apache-2.0

// How long, and how often, a printer is asked right after the host has joined its network.

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "modules/driverless/setup/first_questions.h"

namespace Driverless {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class FirstQuestionsTest : public testing::Test {
protected:
    AskedAgain Begin(const std::string& network, milliseconds at) {
        return questions.Begin(network, seconds(10), begin + at);
    }

    // The end of the next question, in milliseconds; -1: there is none.
    long Next(AskedAgain& asked, milliseconds at) const {
        const auto end = asked.Next(begin + at);
        return end ? std::chrono::duration_cast<milliseconds>(*end - begin).count() : -1;
    }

    const AskedAgain::Time begin{seconds(1000)};
    FirstQuestions questions{seconds(2)};
};

TEST_F(FirstQuestionsTest, ASilentPrinterIsAskedAgainEachTimeForLonger) {
    AskedAgain asked = Begin("Printer", seconds(0));
    EXPECT_EQ(Next(asked, seconds(0)), 2000);
    EXPECT_EQ(Next(asked, seconds(2)), 4000);
    EXPECT_EQ(Next(asked, seconds(4)), 8000);
    EXPECT_EQ(Next(asked, seconds(8)), 10000);
    EXPECT_EQ(Next(asked, seconds(10)), -1);
}

TEST_F(FirstQuestionsTest, QuestionsThatFailAtOnceGoOnAllTheSame) {
    AskedAgain asked = Begin("Printer", seconds(0));
    for (int at = 0; at < 8000; at += 250) {
        EXPECT_GE(Next(asked, milliseconds(at)), at + 2000) << at;
    }
    EXPECT_EQ(Next(asked, milliseconds(9999)), 10000);
    EXPECT_EQ(Next(asked, milliseconds(10000)), -1);
}

TEST_F(FirstQuestionsTest, AnAnswerEndsTheQuestions) {
    AskedAgain asked = Begin("Printer", seconds(0));
    asked.Answered();
    EXPECT_TRUE(asked.IsOver(begin));
    EXPECT_EQ(Next(asked, seconds(1)), -1);
}

TEST_F(FirstQuestionsTest, WhereNobodyListensTheyEndSoon) {
    AskedAgain asked = Begin("Printer", seconds(0));
    asked.Refused();
    EXPECT_EQ(Next(asked, milliseconds(250)), 2000);
    EXPECT_EQ(Next(asked, seconds(2)), -1);
}

TEST_F(FirstQuestionsTest, APrinterThatHasAnsweredIsAskedOnce) {
    Begin("Printer", seconds(0));
    questions.Answered("Printer");
    AskedAgain asked = Begin("Printer", seconds(1));
    EXPECT_FALSE(asked.IsOver(begin + seconds(1)));
    EXPECT_EQ(Next(asked, seconds(1)), 3000);
    EXPECT_TRUE(asked.IsOver(begin + seconds(1)));
    EXPECT_EQ(Next(asked, milliseconds(1250)), -1);
}

TEST_F(FirstQuestionsTest, TheTimeCountsFromWhenTheHostWasSeenThere) {
    Begin("Printer", seconds(0));
    AskedAgain second = Begin("Printer", seconds(7));
    EXPECT_EQ(Next(second, seconds(7)), 10000);
    EXPECT_EQ(Next(second, seconds(10)), -1);
    AskedAgain late = Begin("Printer", seconds(60));
    EXPECT_EQ(Next(late, seconds(60)), 62000) << "one answer's time is left always";
    EXPECT_EQ(Next(late, seconds(62)), -1);
}

TEST_F(FirstQuestionsTest, AHostThatWasElsewhereHasJoinedAnew) {
    Begin("Printer", seconds(0));
    questions.Answered("Office");
    AskedAgain still = Begin("Printer", seconds(5));
    EXPECT_EQ(Next(still, seconds(5)), 7000);
    EXPECT_FALSE(still.IsOver(begin + seconds(7))) << "it was another network's printer";
    questions.Answered("Printer");
    Begin("Office", seconds(20));
    AskedAgain again = Begin("Printer", seconds(30));
    EXPECT_EQ(Next(again, seconds(30)), 32000);
    EXPECT_EQ(Next(again, seconds(32)), 34000);
}

}  // namespace
}  // namespace Driverless
