// SPDX-License-Identifier: MIT
// The conventions of languages and regions, and the names of locales.
#include "foundation/format/LocaleNumbers.h"

#include <sstream>
#include <string>

#include "tests/format/FormatTesting.h"

using namespace ZQFoundation;
using namespace formattesting;

namespace {

struct Conventions {
    const char* numbers;     ///< 1234, 12345678 and 1234.50
    const char* identifiers; ///< with a space after each
};
constexpr Conventions conventions[] = {
    {"1_234 12_345_678 1_234,50",
     "af_ZA br_FR cs_CZ de_AT en_ZA es_CR fi_FI fr_CA kk_KZ ky_KG lt_LT nb_NO nn_NO no_NO os_RU pt_AO "
     "ru_RU se_NO sk_SK sv_FI sv_SE tg_TJ tk_TM tt_RU uk_UA uz_UZ zgh_MA "},
    {"1,234 12,345,678 1,234.50",
     "am_ET ar_EG ar_SA ceb_PH chr_US cy_GB en_AU en_CA en_GB en_IE en_NZ en_SG en_US es_419 es_MX "
     "es_PE es_US fa_IR fil_PH ga_IE gd_GB ha_NG haw_US he_IL ig_NG ja_JP km_KH kn_IN ko_KR mg_MG "
     "mi_NZ mn_MN ms_MY mt_MT my_MM om_ET pa-Arab_PK qu_PE sd_PK si_LK so_SO sw_KE ta_SG th_TH ug_CN "
     "ur_PK yo_NG zh-Hans_CN zh-Hant_TW zh_CN zu_ZA "},
    {"1.234 12.345.678 1.234,50",
     "ar_MA ast_ES az_AZ bs_BA ca_ES da_DK de_BE de_DE de_LU el_CY el_GR en_AT en_DE es_AR es_BO es_CL "
     "es_CO es_UY eu_ES fo_FO fr_LU fr_MA fur_IT fy_NL gl_ES hr_HR hsb_DE id_ID is_IS jv_ID lb_LU "
     "lo_LA mk_MK ms_BN nl_BE nl_NL ps_AF pt_BR ro_MD ro_RO rw_RW sr-Cyrl_RS sr-Latn_RS sr_RS sw_CD "
     "tr_TR uz-Arab_AF vi_VN wo_SN "},
    {"1,234 1,23,45,678 1,234.50",
     "as_IN bn_BD bn_IN dz_BT en_IN gu_IN hi_IN kok_IN ml_IN mr_IN ne_NP or_IN pa_IN ta_IN te_IN "},
    {"1234 12_345_678 1234,50",
     "be_BY bg_BG et_EE hu_HU hy_AM ka_GE lv_LV pl_PL pt_CH pt_MZ pt_PT ru_UA sq_AL "},
    {"1'234 12'345'678 1'234.50", "de_CH de_LI en_CH gsw_CH "},
    {"1~234 12~345~678 1~234,50", "eo fr_BE fr_CH fr_FR rm_CH "},
    {"1234 12.345.678 1234,50", "es_ES it_IT sl_SI "},
    {"1234 12'345'678 1234.50", "it_CH "},
    {"1_234 12_345_678 1_234.50", "xh_ZA "},
    {"1'234 12'345'678 1'234,50", "wae_CH "},
    {"1،234 12،345،678 1،234.50", "ks_IN "},
};

TEST(LocaleNumbers, numbersAreWrittenByTheConventionsOfLanguageAndRegion) {
    int count = 0;
    for (const Conventions& row : conventions) {
        std::istringstream identifiers(row.identifiers);
        for (std::string identifier; identifiers >> identifier; ++count) {
            EXPECT_EQ(visible(formatted(locale(identifier), "%d %d %.2f", 1234, 12345678, 1234.5)),
                      row.numbers)
                << identifier;
        }
    }
    EXPECT_EQ(count, 171);
}

TEST(LocaleNumbers, identifiersComeInSeveralForms) {
    struct Row {
        const char* given;
        const char* identifier;
        const char* number; ///< of 1234567.5
    };
    const Row rows[] = {
        {"de_DE", "de_DE", "1.234.567,5"},
        {"de-DE", "de_DE", "1.234.567,5"},
        {"de", "de", "1.234.567,5"},
        {"de_DE.UTF-8", "de_DE", "1.234.567,5"},
        {"de_DE@euro", "de_DE", "1.234.567,5"},
        {"de-Latn-CH", "de-Latn_CH", "1'234'567.5"},
        {"de-DE-1996", "de_DE_1996", "1.234.567,5"},
        {"de_ZZ", "de_ZZ", "1.234.567,5"}, // an unknown region
        {"es-419", "es_419", "1,234,567.5"},
        {"sr@latin", "sr", "1.234.567,5"},
        {"ff-Adlm-GN", "ff-Adlm_GN", "1\u2E41234\u2E41567.5"},
        {"hi", "hi", "12,34,567.5"},
        {"xx_YY", "xx_YY", "1,234,567.5"}, // an unknown language
        {"und", "und", "1,234,567.5"},
        {"", "", "1,234,567.5"},
        {"d", "d", "1,234,567.5"},
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

TEST(LocaleNumbers, readsNamesPartByPart) {
    const struct {
        const char* identifier;
        const char* language;
        const char* script;
        const char* region;
        bool isPosix;
    } rows[] = {
        {"de-latn-ch", "de", "Latn", "CH", false},
        {"es_419", "es", "", "419", false},
        {"en_us_posix", "en", "", "US", true},
        {"abcdefgh", "abcdefgh", "", "", false},
        {"abcdefghi", "", "", "", false},
        {"d_DE", "", "", "", false},
        {"d3_DE", "", "", "", false},
        {"de_12", "de", "", "", false},
        {"de_abc", "de", "", "", false},
        {"de_4191", "de", "", "", false},
        {"de_1996_DE", "de", "", "", false}, // nothing that follows a variant counts
        {"de_DE_Latn", "de", "", "DE", false},
        {"", "", "", "", false},
    };
    for (const auto& row : rows) {
        const detail::LocaleName name = detail::localeName(row.identifier);
        EXPECT_EQ(name.language, row.language) << row.identifier;
        EXPECT_EQ(name.script, row.script) << row.identifier;
        EXPECT_EQ(name.region, row.region) << row.identifier;
        EXPECT_EQ(name.isPosix, row.isPosix) << row.identifier;
    }
}

} // namespace
