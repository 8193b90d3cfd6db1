// The results of kelprobectl check as TAP and as JUnit XML.
#include "tools/ctl/check/junit.h"
#include "tools/ctl/check/tap.h"

#include <gtest/gtest.h>

#include <QXmlStreamReader>

using namespace ctl;

namespace {

const std::string kHostile = "a\033[2J\n# b\\ \"<&>' \xff\xef\xbf\xbf\xe2\x80\xae";

TEST(Tap, HasALineForEachTestWhateverItsText)
{
    EXPECT_EQ(tapHeader(3), "TAP version 14\n1..3");
    EXPECT_EQ(tapResult(1, {"rings", {}}), "ok 1 - rings");
    EXPECT_EQ(tapResult(2, {"rings", skipped(kHostile)}).find('\n'), std::string::npos);
    EXPECT_EQ(tapResult(2, {"#1 \\ rings", skipped("no LED #1")}),
        "ok 2 - \\#1 \\\\ rings # SKIP no LED \\#1");
    EXPECT_EQ(
        tapResult(3,
            {"rings",
                failed("It \"did\" not.\n", {{"expected", {"03 08 00", "\\"}}, {"got", {}}})}),
        "not ok 3 - rings\n"
        "  ---\n"
        "  message: \"It \\\"did\\\" not.\\\\x0a\"\n"
        "  expected:\n"
        "    - \"03 08 00\"\n"
        "    - \"\\\\\"\n"
        "  got: []\n"
        "  ...");
    EXPECT_EQ(tapBailOut("gone\n"), "Bail out! gone\\\\x0a");
}

TEST(Junit, IsWellFormedWhateverItsText)
{
    Outcome timed;
    timed.details = {{"times", {kHostile, "2 ms"}}};
    const std::string document = junitDocument(kHostile,
        {{"passes", {}, std::chrono::milliseconds(1234)}, {"is timed", timed},
            {"fails", failed(kHostile, {{"got", {kHostile}}})}, {"is left out", skipped(kHostile)}},
        "gone");
    QXmlStreamReader xml(QByteArray::fromStdString(document));
    std::string story;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        story += xml.name().toString().toStdString();
        for (const char* const name : {"tests", "failures", "skipped", "time"})
            if (xml.attributes().hasAttribute(QLatin1String(name)))
                story += ' ' + xml.attributes().value(QLatin1String(name)).toString().toStdString();
        story += "; ";
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString() << document;
    EXPECT_EQ(story,
        "testsuites; testsuite 5 2 1 1.234; testcase 1.234; testcase 0.000; system-out; "
        "testcase 0.000; failure; testcase 0.000; skipped; testcase 0.000; failure; ");
    EXPECT_EQ(document.find('\033'), std::string::npos);
}

} // namespace
