// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_PREFERENCES_NAMES_H
#define HOST_REPORT_READING_PREFERENCES_NAMES_H

#include <QByteArray>
#include <QByteArrayList>
#include <QHash>
#include <QString>

#include <initializer_list>

/**
 * The names that the Bluetooth preferences of macOS keep of devices: DeviceCache, then the device's address, then Name.
 * Nothing in the property list is trusted: what does not fit is no name.
 */
class preferences_names
{
public:
    preferences_names() = default;
    /** Those of a working copy; problem() says why it cannot be read. */
    explicit preferences_names(const QString &file);

    /** The name of the first of the texts that is a public address with a name; null: there is none. */
    QByteArray name_of(std::initializer_list<QByteArrayView> texts) const;

    /** Those that have a name, sorted: "b4:c2:6a:7f:d3:7a". */
    QByteArrayList addresses() const;

    /** Empty unless the list cannot be read. */
    QString problem() const
    {
        return problem_text;
    }

private:
    QHash<QByteArray, QByteArray> names; ///< by address: "b4:c2:6a:7f:d3:7a"
    QString problem_text;
};

#endif
