// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_FUNCTION_LOG_H
#define COMMON_FUNCTION_LOG_H

#include <QString>
#include <QStringView>

/**
 * The debug log as one function writes to it:
 *
 *     constexpr function_log log(u"void bluetooth_logs::create_db_tables()");
 *     log(u"[create_db_tables] starts");
 */
class function_log
{
public:
    /** @p function_info is the function's full signature. The text must outlive this object; literals do. */
    constexpr explicit function_log(QStringView function_info)
        : info(function_info)
    {
    }

    constexpr QStringView function_info() const
    {
        return info;
    }

    /** Writes one line with plugin_static_function::app_debug(). */
    void operator()(QStringView message) const;
    void operator()(const QString &message) const;

private:
    QStringView info;
};

#endif
