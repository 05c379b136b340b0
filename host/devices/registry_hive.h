// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_DEVICES_REGISTRY_HIVE_H
#define HOST_DEVICES_REGISTRY_HIVE_H

#include "host/files/descriptor.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariant>

#include <memory>
#include <optional>

#include <hivex.h>

/** A registry hive in memory, read with hivex. What cannot be read is left out and counted. */
class registry_hive
{
public:
    struct key
    {
        hive_node_h node = 0;
        QString name;
    };

    struct value
    {
        hive_value_h handle = 0;
        QString name;
    };

    explicit registry_hive(const QByteArray &bytes);

    bool is_open() const
    {
        return bool(hive);
    }

    /** Whether the library opens it only when it leaves out checks. */
    bool is_damaged() const
    {
        return is_opened_unsafely;
    }

    /** Keys, values and data that could not be read, or that went beyond the limits. */
    qint64 unread_count() const
    {
        return unread;
    }

    key root();
    QList<key> keys_below(const key &parent);

    /** Of this name in any letter case. */
    std::optional<key> key_below(const key &parent, const QString &name);

    /** The key at the end of a path of names. */
    std::optional<key> key_at(key start, const QStringList &path);

    QList<value> values_of(const key &of);

    /** When the key was last written, as a FILETIME. */
    std::optional<quint64> last_write(const key &of);

    /**
     * A number, a text, a list of texts or bytes, by its type; bytes too where they do not fit the type. A map with
     * "size" in place of more than 64 KiB, and of data that cannot be read.
     */
    QVariant data_of(const value &of);

private:
    struct closer
    {
        void operator()(hive_h *open_hive) const
        {
            hivex_close(open_hive);
        }
    };

    bool may_go_on();

    descriptor memory;
    std::unique_ptr<hive_h, closer> hive;
    bool is_opened_unsafely = false;
    qint64 unread = 0;
    qint64 steps = 0;
};

#endif
