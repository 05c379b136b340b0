// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_TEST_ENTRY_H
#define TESTS_SUPPORT_TEST_ENTRY_H

#include <QCoreApplication>
#include <QTest>

/** Makes a test known, under its class's name, to the program of its folder. */
class test_entry
{
public:
    /** Runs the test with the arguments of Qt Test, and gives the program's exit code. */
    using function = int (*)(int argument_count, char **arguments);

    test_entry(const char *name, function run);
};

/** Runs a test within an application. */
template<typename Test, typename Application>
int run_test(int argument_count, char **arguments)
{
    Application application(argument_count, arguments);
    Test test;
    return QTest::qExec(&test, argument_count, arguments);
}

/** The test's class, and the kind of application that it needs: the plug-in shows widgets. */
#define BLUETOOTH_LOGS_TEST(test, application) static const test_entry test##_entry(#test, run_test<test, application>);

#endif
