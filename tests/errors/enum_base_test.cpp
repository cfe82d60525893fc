#include "lib/baselib/errors/enum_base.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <typeinfo>

namespace BASIC::TYPES {
namespace {

/// An enumeration with further data per enumerator, as the ellipsoids have; its first identifier is above 0.
class PLANET : public ENUM_BASE {
  public:
    explicit PLANET(int id) { AssignId(id, true); }
    int moons = -1;

  private:
    std::span<const ROW> Rows() const override {
        static const ROW rows[] = {{2, "undefined"}, {3, "Earth"}, {4, "Mars"}, {5, "last planet"}};
        return rows;
    }
    void RowAssigned() override { moons = Id() == 3 ? 1 : Id() == 4 ? 2 : 0; }
};

class COLOUR : public ENUM_BASE {
  public:
    explicit COLOUR(int id) { AssignId(id, true); }

  private:
    std::span<const ROW> Rows() const override {
        static const ROW rows[] = {{0, "red"}, {1, "RED"}, {2, "blue"}, {3, "green"}};
        return rows;
    }
};

TEST(EnumBase, CopiesTextAndFurtherDataFromTheRow) {
    PLANET planet(3);
    EXPECT_EQ(planet.Text(), "Earth");
    EXPECT_EQ(planet.moons, 1);
    planet.AssignId(4, false);
    EXPECT_EQ(planet.Id(), 4);
    EXPECT_EQ(planet.Text(), "Earth") << "the text is copied only when asked";
    EXPECT_EQ(planet.moons, 2);
    EXPECT_THROW(planet.AssignId(1, true), ERROR_ENUM_BASE_INVALID_ID);
    EXPECT_THROW(planet.AssignId(6, true), ERROR_ENUM_BASE_INVALID_ID);
    EXPECT_EQ(planet.LastId(), 5);
}

TEST(EnumBase, TakesTheFirstMatchingText) {
    COLOUR colour(3);
    for (const char* text : {"red", "RED", "rEd"}) {
        colour.AssignText(text, false);
        EXPECT_EQ(colour.Id(), 0) << text;
    }
    colour.AssignText("RED", true);
    EXPECT_EQ(colour.Id(), 1);
    EXPECT_THROW(colour.AssignText("Blue", true), ERROR_ENUM_BASE_INVALID_VALUE);
    EXPECT_EQ(colour.Id(), 1) << "a failed conversion changes nothing";
}

TEST(EnumBase, AnInvalidTextTellsTypeTextAndValidValues) {
    COLOUR colour(0);
    try {
        colour.AssignText("Purple", false);
        FAIL() << "Purple was accepted";
    } catch (const ERROR_ENUM_BASE_INVALID_VALUE& error) {
        EXPECT_THAT(error.Message(), testing::StartsWith("enumeration data type - invalid value of class "));
        EXPECT_THAT(error.Message(), testing::HasSubstr(typeid(COLOUR).name()));
        EXPECT_THAT(error.Message(), testing::EndsWith(": Purple"));
        EXPECT_EQ(error.ValidValues(), "Valid values are: 'RED' 'blue' ") << "first and last row are markers";
    }
}

TEST(EnumBase, StepsAndFailsDifferentlyAtItsTwoEnds) {
    PLANET planet(4);
    const PLANET before = planet++;
    EXPECT_EQ(before.Text(), "Mars");
    EXPECT_EQ(before.moons, 2);
    EXPECT_EQ(planet.Id(), 5);
    EXPECT_THROW(++planet, ERROR_ENUM_BASE_INVALID_ID) << "beyond the last";
    EXPECT_EQ(planet--.Id(), 5);
    planet.AssignId(2, true);
    EXPECT_THROW(--planet, ERROR_ENUM_BASE_INVALID_ID) << "below a first identifier above 0";
    COLOUR colour(0);
    EXPECT_THROW(--colour, ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED);
    EXPECT_EQ((++colour).Text(), "RED");
}

TEST(EnumBase, ComparesWithinOneTypeOnly) {
    EXPECT_TRUE(COLOUR(2) == COLOUR(2));
    EXPECT_TRUE(COLOUR(2) != COLOUR(3));
    const ENUM_BASE& planet = PLANET(2);
    const COLOUR colour(2);
    EXPECT_THROW((void)(colour == planet), ERROR_ENUM_BASE_TYPE_MISMATCH);
    EXPECT_THROW((void)(colour != planet), ERROR_ENUM_BASE_TYPE_MISMATCH);
}

TEST(EnumErrors, FixedTexts) {
    EXPECT_EQ(ERROR_ENUM_BASE().Message(), "enumeration data type error");
    EXPECT_EQ(ERROR_ENUM_BASE_INVALID_ID().Message(), "enumeration data type - invalid id");
    EXPECT_EQ(ERROR_ENUM_BASE_TYPE_MISMATCH().Message(), "enumeration data type - type mismatch");
    EXPECT_EQ(ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED().Message(),
              "enumeration data type - limit of enumeration expired");
}

}  // namespace
}  // namespace BASIC::TYPES
