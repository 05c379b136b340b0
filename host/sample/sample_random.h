// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SAMPLE_SAMPLE_RANDOM_H
#define HOST_SAMPLE_SAMPLE_RANDOM_H

#include <QString>

#include <random>

/** Numbers and identifiers that are the same with every library: the standard fixes the engine, not its distributions.
 */
class sample_random
{
public:
    explicit sample_random(quint64 seed)
        : engine(seed)
    {
    }

    /** From 0 to @p limit - 1. */
    qint64 below(qint64 limit)
    {
        return qint64(engine() % quint64(limit));
    }

    /** @p digits hexadecimal digits, upper case. */
    QString hex(qsizetype digits)
    {
        return QString::number(quint64(below(qint64(1) << (4 * digits))), 16).toUpper().rightJustified(digits, u'0');
    }

    /** As devices are identified: upper case, 36 characters. */
    QString uuid()
    {
        QString text = hex(8);
        for (int group = 0; group < 3; ++group)
            text += u'-' + hex(4);
        return text + u'-' + hex(12);
    }

    /** Six bytes, separated by @p separator. */
    QString address(QChar separator)
    {
        QString text = hex(2);
        for (int byte = 1; byte < 6; ++byte)
            text += separator + hex(2);
        return text;
    }

private:
    std::mt19937_64 engine;
};

#endif
