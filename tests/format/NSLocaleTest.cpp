// SPDX-License-Identifier: MIT
#include "foundation/format/NSLocale.h"

#include <cmath>
#include <string>
#include <vector>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSException.h"
#include "foundation/objects/NSNumber.h"
#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;

namespace {

NSLocale locale(const char* identifier) { return NSLocale::localeWithLocaleIdentifier(identifier); }

template <class... Arguments>
std::string formatted(const NSLocale& locale, FormatString<std::type_identity_t<Arguments>...> format,
                      const Arguments&... arguments) {
    return NSString::initWithFormat_locale(format, locale, arguments...).utf8();
}

/// With "_" for the no-break space and "~" for the narrow one.
std::string visible(std::string text) {
    for (const auto& [space, mark] : {std::pair{"\u00A0", "_"}, std::pair{"\u202F", "~"}}) {
        const std::string wanted = space;
        for (std::size_t at = 0; (at = text.find(wanted)) != std::string::npos;) {
            text.replace(at, wanted.size(), mark);
        }
    }
    return text;
}

/// No settings but those that a test makes.
struct NoSettings {
    const kit::ScratchFolder folder;
    const kit::Path store{detail::overrides::defaultsFolder, folder / "store"};
    const kit::Path program{detail::overrides::executablePath, folder / "program"};
    const kit::Variable all{"LC_ALL", nullptr};
    const kit::Variable numeric{"LC_NUMERIC", nullptr};
    const kit::Variable lang{"LANG", nullptr};
};

using Words = std::vector<std::string>;

struct Customs {
    const char* identifier;
    const char* numbers; ///< of 1234, 12345678 and 1234.50
};
constexpr Customs customs[] = {
    {"af_ZA", "1_234 12_345_678 1_234,50"},      {"am_ET", "1,234 12,345,678 1,234.50"},
    {"ar_EG", "1,234 12,345,678 1,234.50"},      {"ar_MA", "1.234 12.345.678 1.234,50"},
    {"ar_SA", "1,234 12,345,678 1,234.50"},      {"as_IN", "1,234 1,23,45,678 1,234.50"},
    {"ast_ES", "1.234 12.345.678 1.234,50"},     {"az_AZ", "1.234 12.345.678 1.234,50"},
    {"be_BY", "1234 12_345_678 1234,50"},        {"bg_BG", "1234 12_345_678 1234,50"},
    {"bn_BD", "1,234 1,23,45,678 1,234.50"},     {"bn_IN", "1,234 1,23,45,678 1,234.50"},
    {"br_FR", "1_234 12_345_678 1_234,50"},      {"bs_BA", "1.234 12.345.678 1.234,50"},
    {"ca_ES", "1.234 12.345.678 1.234,50"},      {"ceb_PH", "1,234 12,345,678 1,234.50"},
    {"chr_US", "1,234 12,345,678 1,234.50"},     {"cs_CZ", "1_234 12_345_678 1_234,50"},
    {"cy_GB", "1,234 12,345,678 1,234.50"},      {"da_DK", "1.234 12.345.678 1.234,50"},
    {"de_AT", "1_234 12_345_678 1_234,50"},      {"de_BE", "1.234 12.345.678 1.234,50"},
    {"de_CH", "1'234 12'345'678 1'234.50"},      {"de_DE", "1.234 12.345.678 1.234,50"},
    {"de_LI", "1'234 12'345'678 1'234.50"},      {"de_LU", "1.234 12.345.678 1.234,50"},
    {"dz_BT", "1,234 1,23,45,678 1,234.50"},     {"el_CY", "1.234 12.345.678 1.234,50"},
    {"el_GR", "1.234 12.345.678 1.234,50"},      {"en_AT", "1.234 12.345.678 1.234,50"},
    {"en_AU", "1,234 12,345,678 1,234.50"},      {"en_CA", "1,234 12,345,678 1,234.50"},
    {"en_CH", "1'234 12'345'678 1'234.50"},      {"en_DE", "1.234 12.345.678 1.234,50"},
    {"en_GB", "1,234 12,345,678 1,234.50"},      {"en_IE", "1,234 12,345,678 1,234.50"},
    {"en_IN", "1,234 1,23,45,678 1,234.50"},     {"en_NZ", "1,234 12,345,678 1,234.50"},
    {"en_SG", "1,234 12,345,678 1,234.50"},      {"en_US", "1,234 12,345,678 1,234.50"},
    {"en_ZA", "1_234 12_345_678 1_234,50"},      {"eo", "1~234 12~345~678 1~234,50"},
    {"es_419", "1,234 12,345,678 1,234.50"},     {"es_AR", "1.234 12.345.678 1.234,50"},
    {"es_BO", "1.234 12.345.678 1.234,50"},      {"es_CL", "1.234 12.345.678 1.234,50"},
    {"es_CO", "1.234 12.345.678 1.234,50"},      {"es_CR", "1_234 12_345_678 1_234,50"},
    {"es_ES", "1234 12.345.678 1234,50"},        {"es_MX", "1,234 12,345,678 1,234.50"},
    {"es_PE", "1,234 12,345,678 1,234.50"},      {"es_US", "1,234 12,345,678 1,234.50"},
    {"es_UY", "1.234 12.345.678 1.234,50"},      {"et_EE", "1234 12_345_678 1234,50"},
    {"eu_ES", "1.234 12.345.678 1.234,50"},      {"fa_IR", "1,234 12,345,678 1,234.50"},
    {"fi_FI", "1_234 12_345_678 1_234,50"},      {"fil_PH", "1,234 12,345,678 1,234.50"},
    {"fo_FO", "1.234 12.345.678 1.234,50"},      {"fr_BE", "1~234 12~345~678 1~234,50"},
    {"fr_CA", "1_234 12_345_678 1_234,50"},      {"fr_CH", "1~234 12~345~678 1~234,50"},
    {"fr_FR", "1~234 12~345~678 1~234,50"},      {"fr_LU", "1.234 12.345.678 1.234,50"},
    {"fr_MA", "1.234 12.345.678 1.234,50"},      {"fur_IT", "1.234 12.345.678 1.234,50"},
    {"fy_NL", "1.234 12.345.678 1.234,50"},      {"ga_IE", "1,234 12,345,678 1,234.50"},
    {"gd_GB", "1,234 12,345,678 1,234.50"},      {"gl_ES", "1.234 12.345.678 1.234,50"},
    {"gsw_CH", "1'234 12'345'678 1'234.50"},     {"gu_IN", "1,234 1,23,45,678 1,234.50"},
    {"ha_NG", "1,234 12,345,678 1,234.50"},      {"haw_US", "1,234 12,345,678 1,234.50"},
    {"he_IL", "1,234 12,345,678 1,234.50"},      {"hi_IN", "1,234 1,23,45,678 1,234.50"},
    {"hr_HR", "1.234 12.345.678 1.234,50"},      {"hsb_DE", "1.234 12.345.678 1.234,50"},
    {"hu_HU", "1234 12_345_678 1234,50"},        {"hy_AM", "1234 12_345_678 1234,50"},
    {"id_ID", "1.234 12.345.678 1.234,50"},      {"ig_NG", "1,234 12,345,678 1,234.50"},
    {"is_IS", "1.234 12.345.678 1.234,50"},      {"it_CH", "1234 12'345'678 1234.50"},
    {"it_IT", "1234 12.345.678 1234,50"},        {"ja_JP", "1,234 12,345,678 1,234.50"},
    {"jv_ID", "1.234 12.345.678 1.234,50"},      {"ka_GE", "1234 12_345_678 1234,50"},
    {"kk_KZ", "1_234 12_345_678 1_234,50"},      {"km_KH", "1,234 12,345,678 1,234.50"},
    {"kn_IN", "1,234 12,345,678 1,234.50"},      {"ko_KR", "1,234 12,345,678 1,234.50"},
    {"kok_IN", "1,234 1,23,45,678 1,234.50"},    {"ky_KG", "1_234 12_345_678 1_234,50"},
    {"lb_LU", "1.234 12.345.678 1.234,50"},      {"lo_LA", "1.234 12.345.678 1.234,50"},
    {"lt_LT", "1_234 12_345_678 1_234,50"},      {"lv_LV", "1234 12_345_678 1234,50"},
    {"mg_MG", "1,234 12,345,678 1,234.50"},      {"mi_NZ", "1,234 12,345,678 1,234.50"},
    {"mk_MK", "1.234 12.345.678 1.234,50"},      {"ml_IN", "1,234 1,23,45,678 1,234.50"},
    {"mn_MN", "1,234 12,345,678 1,234.50"},      {"mr_IN", "1,234 1,23,45,678 1,234.50"},
    {"ms_BN", "1.234 12.345.678 1.234,50"},      {"ms_MY", "1,234 12,345,678 1,234.50"},
    {"mt_MT", "1,234 12,345,678 1,234.50"},      {"my_MM", "1,234 12,345,678 1,234.50"},
    {"nb_NO", "1_234 12_345_678 1_234,50"},      {"ne_NP", "1,234 1,23,45,678 1,234.50"},
    {"nl_BE", "1.234 12.345.678 1.234,50"},      {"nl_NL", "1.234 12.345.678 1.234,50"},
    {"nn_NO", "1_234 12_345_678 1_234,50"},      {"no_NO", "1_234 12_345_678 1_234,50"},
    {"om_ET", "1,234 12,345,678 1,234.50"},      {"or_IN", "1,234 1,23,45,678 1,234.50"},
    {"os_RU", "1_234 12_345_678 1_234,50"},      {"pa-Arab_PK", "1,234 12,345,678 1,234.50"},
    {"pa_IN", "1,234 1,23,45,678 1,234.50"},     {"pl_PL", "1234 12_345_678 1234,50"},
    {"ps_AF", "1.234 12.345.678 1.234,50"},      {"pt_AO", "1_234 12_345_678 1_234,50"},
    {"pt_BR", "1.234 12.345.678 1.234,50"},      {"pt_CH", "1234 12_345_678 1234,50"},
    {"pt_MZ", "1234 12_345_678 1234,50"},        {"pt_PT", "1234 12_345_678 1234,50"},
    {"qu_PE", "1,234 12,345,678 1,234.50"},      {"rm_CH", "1~234 12~345~678 1~234,50"},
    {"ro_MD", "1.234 12.345.678 1.234,50"},      {"ro_RO", "1.234 12.345.678 1.234,50"},
    {"ru_RU", "1_234 12_345_678 1_234,50"},      {"ru_UA", "1234 12_345_678 1234,50"},
    {"rw_RW", "1.234 12.345.678 1.234,50"},      {"sd_PK", "1,234 12,345,678 1,234.50"},
    {"se_NO", "1_234 12_345_678 1_234,50"},      {"si_LK", "1,234 12,345,678 1,234.50"},
    {"sk_SK", "1_234 12_345_678 1_234,50"},      {"sl_SI", "1234 12.345.678 1234,50"},
    {"so_SO", "1,234 12,345,678 1,234.50"},      {"sq_AL", "1234 12_345_678 1234,50"},
    {"sr-Cyrl_RS", "1.234 12.345.678 1.234,50"}, {"sr-Latn_RS", "1.234 12.345.678 1.234,50"},
    {"sr_RS", "1.234 12.345.678 1.234,50"},      {"sv_FI", "1_234 12_345_678 1_234,50"},
    {"sv_SE", "1_234 12_345_678 1_234,50"},      {"sw_CD", "1.234 12.345.678 1.234,50"},
    {"sw_KE", "1,234 12,345,678 1,234.50"},      {"ta_IN", "1,234 1,23,45,678 1,234.50"},
    {"ta_SG", "1,234 12,345,678 1,234.50"},      {"te_IN", "1,234 1,23,45,678 1,234.50"},
    {"tg_TJ", "1_234 12_345_678 1_234,50"},      {"th_TH", "1,234 12,345,678 1,234.50"},
    {"tk_TM", "1_234 12_345_678 1_234,50"},      {"tr_TR", "1.234 12.345.678 1.234,50"},
    {"tt_RU", "1_234 12_345_678 1_234,50"},      {"ug_CN", "1,234 12,345,678 1,234.50"},
    {"uk_UA", "1_234 12_345_678 1_234,50"},      {"ur_PK", "1,234 12,345,678 1,234.50"},
    {"uz_UZ", "1_234 12_345_678 1_234,50"},      {"uz-Arab_AF", "1.234 12.345.678 1.234,50"},
    {"vi_VN", "1.234 12.345.678 1.234,50"},      {"wo_SN", "1.234 12.345.678 1.234,50"},
    {"xh_ZA", "1_234 12_345_678 1_234.50"},      {"yo_NG", "1,234 12,345,678 1,234.50"},
    {"zgh_MA", "1_234 12_345_678 1_234,50"},     {"zh-Hans_CN", "1,234 12,345,678 1,234.50"},
    {"zh-Hant_TW", "1,234 12,345,678 1,234.50"}, {"zh_CN", "1,234 12,345,678 1,234.50"},
    {"zu_ZA", "1,234 12,345,678 1,234.50"},
};

} // namespace

TEST(NSLocale, numbersAreWrittenByTheCustomsOfLanguageAndRegion) {
    for (const Customs& row : customs) {
        EXPECT_EQ(visible(formatted(locale(row.identifier), "%d %d %.2f", 1234, 12345678, 1234.5)),
                  row.numbers)
            << row.identifier;
    }
}

TEST(NSLocale, customsOfProgramsGroupNothing) {
    const NSLocale posix = locale("en_US_POSIX");
    EXPECT_EQ(formatted(posix, "%d %.1f %@", 1234567, 1234.5, NSNumber(1234567)), "1234567 1234.5 1234567");
    EXPECT_EQ(posix.decimalSeparator(), ".");
    EXPECT_EQ(posix.groupingSeparator(), "");
    EXPECT_EQ(posix.localeIdentifier(), "en_US_POSIX");
    EXPECT_EQ(formatted(locale("en-us-posix"), "%d", 1234567), "1234567");
}

TEST(NSLocale, identifiersComeInSeveralForms) {
    struct Row {
        const char* given;
        const char* identifier;
        const char* number; ///< of 1234567.5
    };
    const Row rows[] = {
        {"de_DE", "de_DE", "1.234.567,5"},
        {"de-DE", "de_DE", "1.234.567,5"},
        {"de", "de", "1.234.567,5"},
        {"DE_de", "DE_de", "1.234.567,5"},
        {"de_DE.UTF-8", "de_DE", "1.234.567,5"},
        {"de_DE@euro", "de_DE", "1.234.567,5"},
        {"de_CH.ISO-8859-1@x", "de_CH", "1'234'567.5"},
        {"de-Latn-CH", "de-Latn_CH", "1'234'567.5"},
        {"de_Latn_CH", "de_Latn_CH", "1'234'567.5"},
        {"de-DE-1996", "de_DE_1996", "1.234.567,5"},
        {"de_ZZ", "de_ZZ", "1.234.567,5"}, // an unknown region
        {"es_ZZ", "es_ZZ", "1.234.567,5"},
        {"es-419", "es_419", "1,234,567.5"},
        {"sr@latin", "sr", "1.234.567,5"},
        {"ff-Adlm-GN", "ff-Adlm_GN", "1\u2E41234\u2E41567.5"},
        {"hi", "hi", "12,34,567.5"},
        {"xx_YY", "xx_YY", "1,234,567.5"}, // an unknown language
        {"und", "und", "1,234,567.5"},
        {"", "", "1,234,567.5"},
        {"d", "d", "1,234,567.5"},
        {"!-?", "!-?", "1,234,567.5"},
        {"de-de-de", "de_de_de", "1.234.567,5"},
        {" de_DE ", " de_DE ", "1,234,567.5"},
    };
    for (const Row& row : rows) {
        const NSLocale given = locale(row.given);
        EXPECT_TRUE(given) << row.given;
        EXPECT_EQ(given.localeIdentifier(), row.identifier) << row.given;
        EXPECT_EQ(formatted(given, "%.1f", 1234567.5), row.number) << row.given;
    }
    const std::string endless(100000, 'a');
    EXPECT_EQ(formatted(NSLocale::localeWithLocaleIdentifier(endless), "%d", 1234), "1,234");
}

TEST(NSLocale, partsAreToldOneByOne) {
    const NSLocale indian = locale("en_IN");
    EXPECT_EQ(indian.decimalSeparator(), ".");
    EXPECT_EQ(indian.groupingSeparator(), ",");
    EXPECT_EQ(indian.groupSize(), 3u);
    EXPECT_EQ(indian.secondaryGroupSize(), 2u);
    EXPECT_EQ(indian.minimumGroupingDigits(), 1u);
    EXPECT_EQ(locale("pl").minimumGroupingDigits(), 2u);
    EXPECT_EQ(locale("de").decimalSeparator(), ",");
    EXPECT_EQ(locale("de").secondaryGroupSize(), 3u);
}

TEST(NSLocale, noLocaleMeansAPointAndNoGroups) {
    EXPECT_FALSE(NSLocale());
    EXPECT_FALSE(NSLocale(nullptr));
    EXPECT_FALSE(NSLocale::localeWithLocaleIdentifier(nullptr));
    EXPECT_FALSE(NSLocale(NSDictionary()));
    EXPECT_FALSE(NSLocale().localeIdentifier());
    EXPECT_FALSE(NSLocale().decimalSeparator());
    EXPECT_EQ(formatted(nullptr, "%d %.1f %@", 1234567, 1234.5, NSNumber(1234567)), "1234567 1234.5 1234567");
}

TEST(NSLocale, ofADictionaryOnlyTheDecimalSeparatorCounts) {
    const NSLocale comma(NSDictionary{{"NSDecimalSeparator", ","}, {"NSThousandsSeparator", "."}});
    EXPECT_TRUE(comma);
    EXPECT_EQ(comma.localeIdentifier(), "");
    EXPECT_EQ(formatted(comma, "%d %.2f %@", 1234567, 1234.5, NSNumber(0.5)), "1234567 1234,50 0,5");
    const NSDictionary without[] = {
        NSDictionary{{"a", "b"}},
        NSDictionary{{"NSDecimalSeparator", 7}},
        NSDictionary{{"NSDecimalSeparator", ""}},
    };
    for (const NSDictionary& dictionary : without) {
        EXPECT_TRUE(NSLocale(dictionary));
        EXPECT_EQ(formatted(dictionary, "%d %.2f", 1234567, 1234.5), "1234567 1234.50");
    }
    EXPECT_EQ(formatted(NSLocale(NSDictionary{{"NSDecimalSeparator", "::"}}), "%.1f|%8.1f|", 1.5, 1.5),
              "1::5|    1::5|");
}

TEST(NSLocale, onlyDecimalNumbersFollowIt) {
    const NSLocale german = locale("de_DE");
    EXPECT_EQ(formatted(german, "%d %i %u %ld", -1234567, 1234, 4000000000U, INT64_MIN),
              "-1.234.567 1.234 4.000.000.000 -9.223.372.036.854.775.808");
    EXPECT_EQ(formatted(german, "%.2f %g %G %e", 1234.5, 12345.5, 0.25, 12345.5),
              "1.234,50 12.345,5 0,25 1,234550e+04");
    EXPECT_EQ(formatted(german, "%x %X %o %c %s %C", 1234567, 1234567, 1234567, '7', "1234.5", u'.'),
              "12d687 12D687 4553207 7 1234.5 .");
    EXPECT_EQ(formatted(german, "%f %F", 1e9, -0.5), "1.000.000.000,000000 -0,500000");
    EXPECT_EQ(formatted(german, "%.0f %#.0f %f", 999.6, 1000.0, INFINITY), "1.000 1.000, inf");
    EXPECT_EQ(formatted(german, "%a", 1.5), "0x1.8p+0");
}

TEST(NSLocale, widthsCountTheSeparators) {
    const NSLocale german = locale("de_DE");
    EXPECT_EQ(formatted(german, "%12d|%-12d|%+d|% d|", 1234567, 1234567, 1234, 1234),
              "   1.234.567|1.234.567   |+1.234| 1.234|");
    EXPECT_EQ(formatted(german, "%10.2f|%.6d|", 1234.5, 1234), "  1.234,50|001.234|");
    EXPECT_EQ(visible(formatted(locale("fr_FR"), "%7d|%7d|", 1234, 123)), "  1~234|    123|");
}

TEST(NSLocale, numbersInsertedAsObjectsFollowItAndNothingElseDoes) {
    const NSLocale british = locale("en_GB");
    EXPECT_EQ(formatted(british, "%@ %@ %@", NSNumber(1000), NSNumber(1000U), NSNumber(-1234567.5)),
              "1,000 1,000 -1,234,567.5");
    EXPECT_EQ(formatted(locale("de_AT"), "%@ %@ %@", NSNumber(0.1), NSNumber(true), NSNumber(1e16)),
              "0,1 1 1e+16");
    EXPECT_EQ(formatted(british, "%@ %@ %@", NSString("1000"), "1000.5", nullptr), "1000 1000.5 (null)");
    EXPECT_EQ(formatted(british, "%@", NSArray{1000, 1234567}), "(\n    1000,\n    1234567\n)");
    EXPECT_EQ(formatted(british, "%@", NSDictionary{{"n", 1000}}), "{\n    n = 1000;\n}");
}

TEST(NSLocale, shortNumbersStayWholeWhereTheLanguageWantsIt) {
    const NSLocale spanish = locale("es_ES");
    EXPECT_EQ(formatted(spanish, "%d %d %d %.1f %.1f %@ %@", 999, 1234, 12345, 1234.5, 12345.5,
                        NSNumber(1234), NSNumber(12345)),
              "999 1234 12.345 1234,5 12.345,5 1234 12.345");
    EXPECT_EQ(formatted(spanish, "%6d|%7d|%.5d|", 1234, 12345, 1234), "  1234| 12.345|01.234|");
    EXPECT_EQ(formatted(locale("ee"), "%d %d", 12345, 123456), "12345 123,456");
}

TEST(NSLocale, currentIsTheUsers) {
    const NoSettings none;
    const kit::Arguments arguments(detail::overrides::arguments, Words{"/x/program"});
    EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "en_US_POSIX");
    {
        const kit::Variable lang("LANG", "de_DE.UTF-8");
        EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "de_DE");
        EXPECT_EQ(NSString::localizedStringWithFormat("%d %.1f %@", 1234567, 0.5, NSNumber(1000)),
                  "1.234.567 0,5 1.000");
        const kit::Variable messages("LC_MESSAGES", "fr_FR.UTF-8"); // for texts, not for numbers
        EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "de_DE");
        const kit::Variable numeric("LC_NUMERIC", "es_MX");
        EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "es_MX");
        const kit::Variable all("LC_ALL", "en_GB.utf8");
        EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "en_GB");
        EXPECT_EQ(NSString::localizedStringWithFormat("%d", 1000), "1,000");
    }
    for (const char* programs : {"C", "POSIX", "C.UTF-8"}) {
        const kit::Variable lang("LANG", "de_DE");
        const kit::Variable all("LC_ALL", programs);
        EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "en_US_POSIX") << programs;
        EXPECT_EQ(NSString::localizedStringWithFormat("%d", 1234567), "1234567") << programs;
    }
    const kit::Variable empty("LC_ALL", "");
    const kit::Variable lang("LANG", "pl_PL");
    EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "pl_PL");
}

TEST(NSLocale, currentIsFirstOfAllWhatTheDefaultsSay) {
    const NoSettings none;
    const kit::Variable lang("LANG", "de_DE.UTF-8");
    {
        const kit::Arguments arguments(detail::overrides::arguments,
                                       Words{"/x/program", "-AppleLocale", "de_CH"});
        EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "de_CH");
        EXPECT_EQ(NSString::localizedStringWithFormat("%.1f", 1234.5), "1'234.5");
    }
    const kit::Arguments arguments(detail::overrides::arguments, Words{"/x/program", "-AppleLocale", ""});
    EXPECT_EQ(NSLocale::currentLocale().localeIdentifier(), "de_DE");
}

TEST(NSLocale, nilFormatIsRaisedWithAndWithoutOne) {
    EXPECT_THROW(NSString::initWithFormat_locale_arguments(nullptr, locale("de_DE"), {}), NSException);
    EXPECT_THROW(NSString::initWithFormat_locale_arguments(nullptr, nullptr, {}), NSException);
    EXPECT_THROW(NSString::localizedStringWithFormat_arguments(nullptr, {}), NSException);
}
