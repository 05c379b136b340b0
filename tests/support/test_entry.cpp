// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/test_entry.h"

#include <QByteArray>
#include <QMap>

#include <cstdio>

namespace {

QMap<QByteArray, test_entry::function> &tests()
{
    static QMap<QByteArray, test_entry::function> entries;
    return entries;
}

} // namespace

test_entry::test_entry(const char *name, function run)
{
    tests().insert(name, run);
}

/** The first argument names the test, the others are those of Qt Test. */
int main(int argument_count, char **arguments)
{
    const test_entry::function run = argument_count > 1 ? tests().value(arguments[1]) : nullptr;
    if (!run) {
        const QByteArray names = tests().keys().join('\n');
        std::fprintf(stderr, "The first argument is one of these tests:\n%s\n", names.constData());
        return 2;
    }
    arguments[1] = arguments[0];
    return run(argument_count - 1, arguments + 1);
}
