// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_STRICT_TEST_H
#define TESTS_SUPPORT_STRICT_TEST_H

#include <QObject>

/** A test whose functions fail on every warning that they did not announce. */
class strict_test : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    /** Called before each function and each row. A test with an own one calls this one in it. */
    virtual void init();
};

#endif
