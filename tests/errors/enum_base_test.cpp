#include "lib/baselib/errors/enum_base.h"

#include <gtest/gtest.h>

#include <typeinfo>

namespace BASIC::TYPES {
namespace {

/// Four enumerators from any first identifier on, with further data for each, as the ellipsoids have.
template <int FIRST>
class COLOUR : public ENUM_BASE {
  public:
    explicit COLOUR(int id) { AssignId(id, true); }
    int wavelength_nm = 0;

  private:
    std::span<const ROW> Rows() const override {
        static const ROW rows[] = {{FIRST, "red"}, {FIRST + 1, "RED"}, {FIRST + 2, "blue"}, {FIRST + 3, "azure"}};
        return rows;
    }
    void RowAssigned() override { wavelength_nm = Id() == FIRST + 2 ? 450 : 700; }
};

TEST(EnumBase, CopiesTextAndFurtherDataFromTheRow) {
    COLOUR<20> colour(21);
    EXPECT_EQ(colour.Text(), "RED");
    colour.AssignId(22, false);
    EXPECT_EQ(colour.Text(), "RED") << "the text is copied only when asked";
    EXPECT_EQ(colour.wavelength_nm, 450);
    EXPECT_THROW(colour.AssignId(19, true), ERROR_ENUM_BASE_INVALID_ID);
    EXPECT_THROW(colour.AssignId(24, true), ERROR_ENUM_BASE_INVALID_ID);
}

TEST(EnumBase, TakesTheFirstMatchingTextOrTellsTheValidOnes) {
    COLOUR<0> colour(3);
    colour.AssignText("RED", false);
    EXPECT_EQ(colour.Id(), 0);
    colour.AssignText("AZURE", false);
    EXPECT_EQ(colour.Id(), 3);
    colour.AssignText("RED", true);
    EXPECT_EQ(colour.Id(), 1);
    try {
        colour.AssignText("Blue", true);
        FAIL();
    } catch (const ERROR_ENUM_BASE_INVALID_VALUE& error) {
        EXPECT_EQ(error.Message(),
                  std::string("enumeration data type - invalid value of class ") + typeid(COLOUR<0>).name() + ": Blue");
        EXPECT_EQ(error.ValidValues(), "Valid values are: 'RED' 'blue' ") << "first and last row are markers";
    }
    EXPECT_EQ(colour.Id(), 1) << "a failed conversion changes nothing";
}

TEST(EnumBase, StepsAndFailsDifferentlyAtItsTwoEnds) {
    COLOUR<20> colour(22);
    EXPECT_EQ((colour++).Text(), "blue");
    EXPECT_THROW(++colour, ERROR_ENUM_BASE_INVALID_ID) << "beyond the last";
    EXPECT_EQ(colour--.Id(), 23);
    EXPECT_EQ(colour.Id(), 22);
    EXPECT_EQ((--colour).Text(), "RED");
    COLOUR<20> first(20);
    EXPECT_THROW(--first, ERROR_ENUM_BASE_INVALID_ID) << "below a first identifier above 0";
    COLOUR<0> zero(0);
    EXPECT_THROW(--zero, ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED);
}

TEST(EnumBase, ComparesWithinOneTypeOnly) {
    for (const int id : {2, 3}) {
        EXPECT_EQ(COLOUR<0>(2) == COLOUR<0>(id), id == 2);
        EXPECT_EQ(COLOUR<0>(2) != COLOUR<0>(id), id == 3);
    }
    const ENUM_BASE& other = COLOUR<20>(20);
    EXPECT_THROW((void)(COLOUR<0>(2) == other), ERROR_ENUM_BASE_TYPE_MISMATCH);
    EXPECT_THROW((void)(COLOUR<0>(2) != other), ERROR_ENUM_BASE_TYPE_MISMATCH);
}

}  // namespace
}  // namespace BASIC::TYPES
