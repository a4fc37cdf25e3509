// SPDX-License-Identifier: MIT
// Qt's types as values and back, as arguments, and Qt's messages in the log.
#include <ZQFoundation/Qt.h>
#include <ZQFoundation/Std.h>
#include <gtest/gtest.h>

#include <cmath>

using namespace ZQFoundation;

namespace {

std::string described(const NSObject& object) { return object.condensedDescription().utf8(); }

} // namespace

TEST(Qt, textsBothWays) {
    const QString cafe = QString::fromUtf8("caf\u00e9 \U0001F600");
    EXPECT_EQ(NSString(cafe), "caf\u00e9 \U0001F600");
    EXPECT_EQ(NSString(cafe).as<QString>(), cafe);
    EXPECT_EQ(NSString(QStringView(cafe).left(4)), "caf\u00e9");
    EXPECT_EQ(NSString(QLatin1String("\xe9")), "\u00e9");
    EXPECT_EQ(NSString(QByteArray("caf\u00e9")), "caf\u00e9");
    EXPECT_EQ(NSString(u"a\xD800").as<QString>(), QString(QChar(u'a')) + QChar(0xD800));
    EXPECT_FALSE(NSString(QString()));
    EXPECT_EQ(NSString(QString("")), "");
    EXPECT_TRUE(NSString().as<QString>().isNull());
    EXPECT_TRUE(NSString("").as<QString>().isEmpty() && !NSString("").as<QString>().isNull());
    EXPECT_TRUE(NSString("caf\u00e9 \U0001F600") == cafe);
    EXPECT_EQ((NSDictionary{{"caf\u00e9 \U0001F600", 5}}[cafe]), 5);
}

TEST(Qt, argumentsOfFormats) {
    EXPECT_EQ(
        NSString::stringWithFormat("%@|%@|%@|%@", QString("a"), QUrl("http://a/b c"), QVariant(5), QString())
            .utf8(),
        "a|http://a/b%20c|5|(null)");
    EXPECT_EQ(NSString::stringWithFormat("%@", QStringList{"a"}), "(\n    a\n)");
    EXPECT_EQ(NSString::stringWithFormat("%@", QDateTime::fromMSecsSinceEpoch(1500)),
              "1970-01-01 00:00:01 +0000");
}

TEST(Qt, datesBothWaysToTheMillisecond) {
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(-1);
    EXPECT_NEAR(NSDate(time).timeIntervalSince1970(), -0.001, 1e-6);
    EXPECT_EQ(NSDate(time).as<QDateTime>(), time);
    EXPECT_FALSE(NSDate(QDateTime()));
    EXPECT_FALSE(NSDate().as<QDateTime>().isValid());
    for (const double tooFar : {1e300, -1e17, std::nan("")}) {
        EXPECT_FALSE(NSDate::dateWithTimeIntervalSince1970(tooFar).as<QDateTime>().isValid()) << tooFar;
    }
}

TEST(Qt, urlsAndBytesBothWays) {
    const QUrl url("http://a/\u00fc?x=1#y");
    EXPECT_EQ(NSURL(url).absoluteString(), "http://a/%C3%BC?x=1#y");
    EXPECT_EQ(NSURL(url).as<QUrl>(), url);
    EXPECT_EQ(NSURL(QUrl("a/b?c")).absoluteString(), "a/b?c");
    EXPECT_FALSE(NSURL(QUrl("http://[a"))); // invalid
    EXPECT_FALSE(NSURL(QUrl()));
    EXPECT_FALSE(NSURL().as<QUrl>().isValid());
    const QUrl file = QUrl::fromLocalFile("/tmp/[a] b.txt"); // Qt leaves brackets as they are
    EXPECT_EQ(NSURL(file).absoluteString(), "file:///tmp/%5Ba%5D%20b.txt");
    EXPECT_EQ(NSURL(file).as<QUrl>().toLocalFile(), file.toLocalFile());
    EXPECT_EQ(NSURL(QUrl("http://u@[::1]:80/[?a[b]=1#[c]")).absoluteString(),
              "http://u@[::1]:80/%5B?a%5Bb%5D=1#%5Bc%5D");
    EXPECT_EQ(NSURL(QUrl("mailto:[a]//b")).absoluteString(), "mailto:%5Ba%5D//b");
    const QByteArray bytes("a\0\xff", 3);
    EXPECT_EQ(dataOf(bytes).length(), 3U);
    EXPECT_EQ(dataOf(bytes).as<QByteArray>(), bytes);
}

TEST(Qt, listsAndMapsBothWays) {
    const QVariantMap map{
        {"a", 1}, {"b", QVariantList{true, 2.5, "x"}}, {"c", QByteArray("z")}, {"d", QVariant()}};
    const NSDictionary dictionary = map;
    EXPECT_EQ(described(dictionary["b"]), "( 1, 2.5, x )");
    EXPECT_EQ(dictionary["d"], NSNull::null());
    EXPECT_TRUE(dictionary["b"].as<NSArray>()[0].as<NSNumber>().isBoolean());
    EXPECT_EQ(dictionary.as<QVariantMap>()["b"].toList(), (QVariantList{true, 2.5, "x"}));
    EXPECT_EQ(dictionary.as<QVariantMap>()["a"].toInt(), 1);
    EXPECT_EQ(dictionary.as<QVariantMap>()["c"].toByteArray(), "z");
    EXPECT_EQ(NSArray(QStringList{"a", "b"}).as<QStringList>(), (QStringList{"a", "b"}));
    EXPECT_EQ(NSArray(QList<QUrl>{QUrl("a:b")})[0], NSObject(NSURL::URLWithString("a:b")));
    EXPECT_EQ((NSDictionary{{"a", "b"}}.as<QMap<QString, QString>>()), (QMap<QString, QString>{{"a", "b"}}));
    EXPECT_EQ((NSArray{1, 2}.as<QList<int>>()), (QList<int>{1, 2}));
    EXPECT_EQ((NSDictionary{{"a", 1}}.as<QMap<QString, double>>()), (QMap<QString, double>{{"a", 1}}));
}

TEST(Qt, variantsWithListsAndMapsOfOneType) {
    EXPECT_EQ(NSObject(QVariant::fromValue(QList<int>{1, 2})), (NSArray{1, 2}));
    EXPECT_EQ(NSObject(QVariant::fromValue(QMap<QString, QString>{{"a", "b"}})), (NSDictionary{{"a", "b"}}));
    EXPECT_EQ(NSObject(QVariantList{QVariant::fromValue(QList<double>{0.5})}),
              NSArray::arrayWithObject(NSArray{0.5}));
}

TEST(Qt, variantsKeepWhatANumberIs) {
    EXPECT_EQ(described(QVariant(qulonglong(UINT64_MAX))), "18446744073709551615");
    EXPECT_EQ(NSObject(QVariant::fromValue(quint8{200})), 200); // a number, although Qt has a letter for it
    EXPECT_EQ(NSObject(QVariant::fromValue(qint8{-5})), -5);
    EXPECT_EQ(NSObject(UINT64_MAX).as<QVariant>().toULongLong(), UINT64_MAX);
    EXPECT_EQ(NSObject(true).as<QVariant>().typeId(), int(QMetaType::Bool));
    EXPECT_EQ(NSObject(-5).as<QVariant>().toLongLong(), -5);
    EXPECT_EQ(NSObject(0.5).as<QVariant>().toDouble(), 0.5);
    EXPECT_FALSE(NSObject(QVariant()));
    EXPECT_FALSE(NSObject().as<QVariant>().isValid());
}

TEST(Qt, messagesAreLinesOfTheLog) {
    logMessagesOfQt();
    testing::internal::CaptureStderr();
    qWarning("disk %d%%", 90);
    const QLoggingCategory category("host.net");
    qCCritical(category) << "caf\u00e9" << 5;
    const std::string lines = testing::internal::GetCapturedStderr();
    qInstallMessageHandler(nullptr);
    EXPECT_NE(lines.find("] qt: warning: disk 90%\n"), std::string::npos) << lines;
    EXPECT_NE(lines.find("] host.net: critical: caf\u00e9 5\n"), std::string::npos) << lines;
}
