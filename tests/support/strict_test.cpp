// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/strict_test.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

void strict_test::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
}
