// SPDX-License-Identifier: Apache-2.0

#include "broker/log/location.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::string Text(const Broker::Location& where) {
    return std::string(where.function) + std::string(where.suffix);
}

std::string TextOf(std::string_view signature) {
    return Text(Broker::LocationOf(signature));
}

}  // namespace

namespace Sample {

struct Vendor {};

class Facade {
public:
    Facade() : made(Text(HERE)) {}
    static Facade& GetInstance(std::string& where) {
        where = Text(HERE);
        static Facade facade;
        return facade;
    }
    std::string Start(const Vendor&, int) { return Text(HERE); }
    std::string Const() const { return Text(HERE); }
    Vendor* Pointer(std::string& where) {
        where = Text(HERE);
        return nullptr;
    }
    std::vector<std::pair<int, Vendor>> Container(std::string& where) {
        where = Text(HERE);
        return {};
    }
    std::string InLambda(int value) {
        return [value, this] { return value == 0 ? made : Text(HERE); }();
    }
    std::string made;
};

std::string Free(int (*)(const Vendor*)) {
    return Text(HERE);
}

}  // namespace Sample

std::string Global() {
    return Text(HERE);
}

TEST(Location, IsTheQualifiedNameOfAMember) {
    EXPECT_EQ(Sample::Facade().Start({}, 1), "Sample::Facade::Start");
    EXPECT_EQ(Sample::Facade().Const(), "Sample::Facade::Const");
}

TEST(Location, IsTheQualifiedNameOfAConstructor) {
    EXPECT_EQ(Sample::Facade().made, "Sample::Facade::Facade");
}

TEST(Location, HasNothingOfTheReturnType) {
    std::string where;
    Sample::Facade facade;
    Sample::Facade::GetInstance(where);
    EXPECT_EQ(where, "Sample::Facade::GetInstance");
    facade.Pointer(where);
    EXPECT_EQ(where, "Sample::Facade::Pointer");
    facade.Container(where);
    EXPECT_EQ(where, "Sample::Facade::Container");
}

TEST(Location, HasNothingOfTheParameters) {
    EXPECT_EQ(Sample::Free(nullptr), "Sample::Free");
    EXPECT_EQ(Global(), "Global");
}

TEST(Location, OfALambdaIsTheFunctionAroundItAndTheLambdasOwnName) {
    EXPECT_EQ(Sample::Facade().InLambda(1), "Sample::Facade::InLambda::<lambda_1>::operator ()");
}

namespace Sample {

// What the compiler itself says of a function.
struct Raw {
    static std::string_view Run(const Vendor&, int) { return PLATFORM_FUNCTION_SIGNATURE; }
    static std::string_view InLambda(int value) {
        return [value]() -> std::string_view {
            return value == 0 ? std::string_view() : PLATFORM_FUNCTION_SIGNATURE;
        }();
    }
};

}  // namespace Sample

// A compiler that says something else has to be taught to LocationOf first.
TEST(Location, IsReadFromTextsThatAreKnown) {
    EXPECT_THAT(
        std::string(Sample::Raw::Run({}, 1)),
        testing::AnyOf("static std::string_view Sample::Raw::Run(const Sample::Vendor&, int)",
                       "static std::string_view Sample::Raw::Run(const Sample::Vendor &, int)",
                       "Sample::Raw::Run"));
    EXPECT_THAT(std::string(Sample::Raw::InLambda(1)),
                testing::AnyOf("Sample::Raw::InLambda(int)::<lambda()>",
                               "auto Sample::Raw::InLambda(int)::(anonymous class)::operator()() "
                               "const",
                               "Sample::Raw::InLambda::<lambda_1>::operator ()"));
}

constexpr bool Is(const Broker::Location& where, std::string_view function,
                  std::string_view suffix = {}) {
    return where.function == function && where.suffix == suffix;
}

constexpr std::string_view kLambda = "::<lambda_1>::operator ()";

// Clang: blanks before * and &, the class of a lambda without a name or, later, with its place.
using Broker::CompiledLocationOf;
static_assert(Is(CompiledLocationOf("A::B::B()"), "A::B::B"));
static_assert(Is(CompiledLocationOf("A::B::~B()"), "A::B::~B"));
static_assert(Is(CompiledLocationOf("int A::B::Run(const A::C &, int)"), "A::B::Run"));
static_assert(Is(CompiledLocationOf("static A::B &A::B::GetInstance()"), "A::B::GetInstance"));
static_assert(Is(CompiledLocationOf("A::C *A::B::Run() const"), "A::B::Run"));
static_assert(Is(CompiledLocationOf("std::vector<std::pair<int, C>> A::B::Run()"), "A::B::Run"));
static_assert(Is(CompiledLocationOf("int A::Run(int (*)(const A::C *))"), "A::Run"));
static_assert(Is(CompiledLocationOf("std::string A::Run(const std::string &)"), "A::Run"));
static_assert(Is(CompiledLocationOf("int A::(anonymous namespace)::Run(unsigned long)"),
                 "A::(anonymous namespace)::Run"));
static_assert(Is(CompiledLocationOf("auto A::B::Run(int)::(anonymous class)::operator()() const"),
                 "A::B::Run", kLambda));
static_assert(
    Is(CompiledLocationOf("auto A::B::Run(int)::(anonymous class)::operator()(int) const"),
       "A::B::Run", kLambda));
static_assert(Is(CompiledLocationOf("auto A::B::Run(int)::(lambda at a/b c.cpp:12:9)::operator()() "
                                    "const"),
                 "A::B::Run", kLambda));

// GCC: a lambda by its parameters.
static_assert(Is(CompiledLocationOf("static A::B& A::B::GetInstance()"), "A::B::GetInstance"));
static_assert(Is(CompiledLocationOf("A::B::Run(int)::<lambda(int)>"), "A::B::Run", kLambda));
static_assert(Is(CompiledLocationOf("int A::{anonymous}::Run(long unsigned int)"),
                 "A::{anonymous}::Run"));

TEST(Location, ReadsEveryCompilersRendering) {
    EXPECT_EQ(TextOf("A::B::Run"), "A::B::Run");
    EXPECT_EQ(TextOf("int A::B::Run(const A::C&)"), "A::B::Run");
    EXPECT_EQ(TextOf("A::C *A::B::Run(const A::C &)"), "A::B::Run");
    EXPECT_EQ(TextOf("static A::B& A::B::GetInstance()"), "A::B::GetInstance");
    EXPECT_EQ(TextOf("std::map<int, A::C (*)(int)> A::B::Run(int (*)(A::C)) const"), "A::B::Run");
    EXPECT_EQ(TextOf("A::B::Run(int)::<lambda()>"), "A::B::Run::<lambda_1>::operator ()");
    EXPECT_EQ(TextOf("auto A::B::Run(int)::(anonymous class)::operator()() const"),
              "A::B::Run::<lambda_1>::operator ()");
    EXPECT_EQ(TextOf("A::B::Run::<lambda_1>::operator ()"), "A::B::Run::<lambda_1>::operator ()");
    EXPECT_EQ(TextOf(""), "");
}
