#include "geometry/ellipsoid_type.h"

#include <gtest/gtest.h>

#include "lib/baselib/pool/parameter_pool.h"
#include "tests/kit/pool_text.h"

namespace {

TEST(EllipsoidType, KnowsItsAxesWhateverTheSpelling) {
    const struct {
        const char* text;
        int id;
        const char* name;
        double a_m;
        double b_m;
    } cases[] = {
        {"airy", 1, "Airy", 6377340.189, 6356034.447},
        {"BESSEL", 2, "Bessel", 6377397.155, 6356078.965},
        {"grs80", 3, "GRS80", 6378137.0, 6356752.3141},
        {"wGs84", 4, "WGS84", 6378137.0, 6356752.315},
        {"-", 5, "-", 0.0, 0.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const EllipsoidType<double> type{std::string(c.text)};
        EXPECT_EQ(type.Id(), c.id);
        EXPECT_EQ(type.Text(), c.name);
        EXPECT_EQ(type.SemiMajorAxis(), c.a_m);
        EXPECT_EQ(type.SemiMinorAxis(), c.b_m);
        EXPECT_EQ(EllipsoidType<float>(c.text).SemiMinorAxis(), static_cast<float>(c.b_m));
    }
    EXPECT_EQ(EllipsoidType<double>().Text(), "-");
    EXPECT_EQ(EllipsoidType<long double>("WGS84").SemiMinorAxis(), 6356752.315L);
}

TEST(EllipsoidType, RefusesAnotherName) {
    try {
        EXPECT_EQ(EllipsoidType<double>("WGS 84").Text(), "refused");
    } catch (const BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE& error) {
        EXPECT_EQ(error.ValidValues(), "Valid values are: 'Bessel' 'GRS80' 'WGS84' ");
        EXPECT_NE(error.Message().find(": WGS 84"), std::string::npos);
    }
    EXPECT_EQ(EllipsoidType<double>::ValidNames(), "'Airy' 'Bessel' 'GRS80' 'WGS84' '-' ");
}

TEST(EllipsoidType, ReadsItsNameFromAPool) {
    POOL_TEXT text;
    text.SetText("ellipsoid_type", "bessel");
    PARAMETER_POOL pool(text.Save());
    EllipsoidType<double> type;
    type.ReadFromParameterPool(pool);
    EXPECT_EQ(type.Text(), "Bessel");
}

}  // namespace
