// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/platform_limits.h"

#include <QByteArrayView>
#include <QTest>

namespace {

struct limit
{
    QByteArrayView platform;
    QByteArrayView test;
    QByteArrayView row; ///< empty for a test without rows
    const char *reason;
};

// clang-format off
constexpr limit limits[] = {
    {"gnustep", "values",       "highest unsigned", "GNUstep reads integers of XML lists as signed 64 bits"},
    {"gnustep", "values",       "binary unsigned",  "GNUstep raises an exception at integers of 16 bytes"},
    {"gnustep", "array_values", "highest unsigned", "GNUstep reads integers of XML lists as signed 64 bits"},
    {"gnustep", "nsdate",       "no number",        "GNUstep raises an exception at dates that are no number"},
    {"gnustep", "damaged_binary_lists_are_survived", "", "GNUstep raises exceptions at malformed binary lists"},
};
// clang-format on

} // namespace

const char *platform_limit()
{
    for (const limit &known : limits) {
        if (known.platform == QByteArrayView(BLUETOOTH_LOGS_PLATFORM)
            && known.test == QByteArrayView(QTest::currentTestFunction())
            && known.row == QByteArrayView(QTest::currentDataTag()))
            return known.reason;
    }
    return nullptr;
}
