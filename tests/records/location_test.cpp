#include "records/location.h"

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
