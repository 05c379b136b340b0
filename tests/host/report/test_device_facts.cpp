// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/device_facts.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/** How a source knows a device. */
enum class known { paired, noticed, seen, listed };

device_appearance appearance(int source, known how)
{
    device_appearance one;
    one.source = source;
    one.is_paired = how == known::paired || how == known::noticed;
    if (how != known::listed)
        one.table = how == known::seen ? u"devices"_s : u"paired_devices"_s;
    if (how == known::noticed)
        one.place.line = 12;
    return one;
}

report_case empty_case()
{
    return {case_layout(u"/case"_s), {}, {}, {}, {}, {}};
}

/** The words for a device that is known so to the first, second … source. */
QByteArray words_of(const QList<known> &by_source)
{
    report_case the_case = empty_case();
    joined_device device;
    device.shared_number = 1;
    for (int place = 0; place < int(by_source.size()); ++place) {
        report_source source;
        source.record.number = place + 1;
        the_case.sources.append(source);
        device.sources.append(place);
        device.appearances.append(appearance(place, by_source.at(place)));
    }
    const QList<joined_device> devices{device};
    return link_strength(the_case, facts_of(devices).first());
}

} // namespace

/** How strong a link between sources is, in words. */
class test_device_facts : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void strength_data();
    void strength();
    void not_shared();
};

Q_DECLARE_METATYPE(known)

void test_device_facts::strength_data()
{
    QTest::addColumn<QList<known>>("by_source");
    QTest::addColumn<QByteArray>("words");

    using k = known;
    // clang-format off
    QTest::newRow("paired")            << QList{k::paired, k::paired}             << QByteArray("paired in both");
    QTest::newRow("paired, seen")      << QList{k::paired, k::seen}               << QByteArray("paired and seen");
    QTest::newRow("paired, listed")    << QList{k::listed, k::paired}             << QByteArray("paired and listed");
    QTest::newRow("seen")              << QList{k::seen, k::seen}                 << QByteArray("seen in both, which may be mere proximity");
    QTest::newRow("listed")            << QList{k::listed, k::listed}             << QByteArray("listed in both");
    QTest::newRow("listed, seen")      << QList{k::seen, k::listed}               << QByteArray("listed and seen");
    QTest::newRow("strongest pair")    << QList{k::paired, k::seen, k::paired, k::seen, k::seen}
                                       << QByteArray("paired in both (paired in 2, seen in 3)");
    QTest::newRow("listed besides")    << QList{k::paired, k::listed, k::seen}    << QByteArray("paired and seen (paired in 1, seen in 1, listed in 1)");
    QTest::newRow("a notice")          << QList{k::paired, k::noticed}            << QByteArray("paired in both, in source 2 by notice of use alone");
    QTest::newRow("notices alone")     << QList{k::noticed, k::noticed}           << QByteArray("paired in both, by notice of use alone");
    QTest::newRow("notices of some")   << QList{k::noticed, k::noticed, k::paired}
                                       << QByteArray("paired in both (paired in 3, seen in 0), in 2 of them by notice of use alone");
    // clang-format on
}

void test_device_facts::strength()
{
    QFETCH(QList<known>, by_source);
    QTEST(words_of(by_source), "words");
}

void test_device_facts::not_shared()
{
    joined_device device;
    device.appearances.append(appearance(0, known::paired));
    device.sources.append(0);
    const QList<joined_device> devices{device};
    QCOMPARE(link_strength(empty_case(), facts_of(devices).first()), QByteArray());
}

BLUETOOTH_LOGS_TEST(test_device_facts, QCoreApplication)

#include "test_device_facts.moc"
