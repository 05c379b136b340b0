// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/worker/sqlite_memory.h"

#include "tests/support/child_answers.h"
#include "tests/support/sanitizer.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

#include <sqlite3.h>
#include <sys/resource.h>

namespace {

constexpr int much = 1 << 30;

int ends_of_memory = 0;

void count_end_of_memory()
{
    ++ends_of_memory;
}

} // namespace

/** Whoever uses SQLite in a process: where there is no memory for it, it is told. */
class test_sqlite_memory : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void memory_that_is_not_there();
};

void test_sqlite_memory::memory_that_is_not_there()
{
    if (is_sanitized)
        QSKIP("a sanitizer needs all addresses");
    const child_answers given(7, [](int *answers) {
        make_sqlite_memory_watchable();
        void *memory = sqlite3_malloc(100);
        const rlimit limit{much, much};
        ::setrlimit(RLIMIT_AS, &limit);
        answers[0] = memory != nullptr;
        answers[1] = sqlite3_malloc(much) == nullptr && ends_of_memory == 0; // nobody watches
        {
            const sqlite_memory_watch watch(count_end_of_memory);
            void *const other = sqlite3_malloc(100);
            memory = sqlite3_realloc(memory, 200);
            answers[2] = other != nullptr && memory != nullptr && ends_of_memory == 0;
            answers[3] = sqlite3_malloc(much) == nullptr && ends_of_memory == 1;
            answers[4] = sqlite3_realloc(memory, much) == nullptr && ends_of_memory == 2;
        }
        answers[5] = sqlite3_malloc(much) == nullptr && ends_of_memory == 2;
        const sqlite_memory_watch again(count_end_of_memory);
        answers[6] = sqlite3_malloc(much) == nullptr && ends_of_memory == 3;
    });
    QCOMPARE(given.signal(), 0);
    for (size_t place = 0; place < 7; ++place)
        QVERIFY2(given[place] == 1, qPrintable(QString::number(place)));
}

BLUETOOTH_LOGS_TEST(test_sqlite_memory, QCoreApplication)
#include "test_sqlite_memory.moc"
