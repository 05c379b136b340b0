// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/leaf_pages.h"

#include <QByteArray>
#include <QSet>
#include <QtEndian>

#include <algorithm>
#include <bit>
#include <optional>

namespace {

constexpr QByteArrayView magic("SQLite format 3\0", 16);
constexpr qsizetype file_header_bytes = 100;
constexpr qsizetype leaf_header_bytes = 8;
constexpr char table_leaf = 0x0d;
constexpr qint64 most_row_bytes = 1 << 20;

/** A number of one to nine bytes, seven bits in each but the ninth. */
struct varint
{
    qint64 value = 0;
    qsizetype size = 0; ///< 0: it goes beyond the end
};

varint varint_at(QByteArrayView bytes, qsizetype at)
{
    quint64 value = 0;
    for (qsizetype i = 0; i < 9 && at + i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[at + i]);
        if (i == 8)
            return {qint64(value << 8 | byte), 9};
        value = value << 7 | (byte & 0x7f);
        if ((byte & 0x80) == 0)
            return {qint64(value), i + 1};
    }
    return {};
}

template<typename Number>
Number number_at(QByteArrayView bytes, qsizetype at)
{
    return qFromBigEndian<Number>(bytes.data() + at);
}

qint64 signed_number(QByteArrayView bytes)
{
    qint64 value = bytes.isEmpty() || static_cast<signed char>(bytes[0]) >= 0 ? 0 : -1;
    for (const char byte : bytes)
        value = qint64(quint64(value) << 8 | static_cast<unsigned char>(byte));
    return value;
}

/** How many bytes a value of this serial type has; none for types that are not used. */
std::optional<qint64> size_of_type(qint64 type)
{
    constexpr qint64 sizes[] = {0, 1, 2, 3, 4, 6, 8, 8, 0, 0};
    if (type >= 0 && type < 10)
        return sizes[type];
    if (type < 12)
        return {};
    return (type - 12) / 2;
}

cell value_of(qint64 type, QByteArrayView bytes)
{
    if (type == 0)
        return {};
    if (type == 7)
        return {cell::type::real, 0, std::bit_cast<double>(number_at<quint64>(bytes, 0)), {}};
    if (type == 8 || type == 9)
        return cell::of_integer(qint64(type - 8));
    if (type < 7)
        return cell::of_integer(signed_number(bytes));
    return {type % 2 == 0 ? cell::type::blob : cell::type::text, 0, 0, bytes};
}

/** The values of a record; none unless its header and its body are as long as they say. */
std::optional<QList<cell>> values_in(QByteArrayView record)
{
    const varint header = varint_at(record, 0);
    if (header.size == 0 || header.value < header.size || header.value > record.size())
        return {};
    QList<cell> values;
    qint64 body = header.value;
    for (qsizetype at = header.size; at < header.value;) {
        const varint type = varint_at(record.first(header.value), at);
        const std::optional<qint64> size = type.size == 0 ? std::nullopt : size_of_type(type.value);
        if (!size || *size > record.size() - body)
            return {};
        values.append(value_of(type.value, record.sliced(body, *size)));
        body += *size;
        at += type.size;
    }
    if (body != record.size())
        return {};
    return values;
}

class leaf_page_reader
{
public:
    leaf_page_reader(QByteArrayView file, const std::function<void(const leaf_row &row)> &take_row)
        : database(file)
        , take(take_row)
    {
    }

    void run()
    {
        if (database.size() < file_header_bytes || database.first(magic.size()) != magic)
            return;
        const auto size = number_at<quint16>(database, 16);
        page_size = size == 1 ? 65536 : size;
        usable = page_size - static_cast<unsigned char>(database[20]);
        if (page_size < 512 || !std::has_single_bit(quint64(page_size)) || usable < 480)
            return;
        find_free_pages();
        for (qint64 page = 1; page <= page_count(); ++page) {
            if (!free_pages.contains(page))
                read_page(page);
        }
    }

private:
    /** Where a cell lies in its page and what it says of itself. */
    struct cell_place
    {
        qsizetype begin = 0;
        qsizetype end = 0;
        qint64 rowid = 0;
        qint64 payload = 0;  ///< bytes of the record
        qsizetype local = 0; ///< place of its beginning
        qint64 local_bytes = 0;
    };

    qint64 page_count() const
    {
        return database.size() / page_size;
    }

    QByteArrayView page_at(qint64 page) const
    {
        return database.sliced((page - 1) * page_size, usable);
    }

    void find_free_pages()
    {
        QSet<qint64> trunks;
        qint64 trunk = number_at<quint32>(database, 32);
        while (trunk >= 2 && trunk <= page_count() && !trunks.contains(trunk)) {
            trunks.insert(trunk);
            const QByteArrayView bytes = page_at(trunk);
            const qint64 count = qMin<qint64>(number_at<quint32>(bytes, 4), usable / 4 - 2);
            for (qint64 i = 0; i < count; ++i)
                free_pages.insert(number_at<quint32>(bytes, 8 + 4 * i));
            trunk = number_at<quint32>(bytes, 0);
        }
        free_pages += trunks;
    }

    void read_page(qint64 page)
    {
        const QByteArrayView bytes = page_at(page);
        const qsizetype header = page == 1 ? file_header_bytes : 0;
        if (bytes[header] != table_leaf)
            return;
        const std::optional<QList<cell_place>> cells = cells_on(bytes, header);
        if (!cells)
            return;
        for (const cell_place &place : *cells)
            read_row(page, bytes, place);
    }

    /** The cells of a page by their rowids; none unless all are whole, apart from each other and in order. */
    std::optional<QList<cell_place>> cells_on(QByteArrayView bytes, qsizetype header) const
    {
        const qsizetype count = number_at<quint16>(bytes, header + 3);
        const qsizetype first_cell = header + leaf_header_bytes + 2 * count;
        if (first_cell > bytes.size())
            return {};
        QList<cell_place> cells;
        for (qsizetype i = 0; i < count; ++i) {
            const qsizetype at = number_at<quint16>(bytes, header + leaf_header_bytes + 2 * i);
            const std::optional<cell_place> place = at < first_cell ? std::nullopt : cell_at(bytes, at);
            if (!place || (!cells.isEmpty() && cells.last().rowid >= place->rowid))
                return {};
            cells.append(*place);
        }
        QList<cell_place> by_place = cells;
        std::sort(by_place.begin(), by_place.end(),
                  [](const cell_place &one, const cell_place &two) { return one.begin < two.begin; });
        for (qsizetype i = 1; i < by_place.size(); ++i) {
            if (by_place[i].begin < by_place[i - 1].end)
                return {};
        }
        return cells;
    }

    std::optional<cell_place> cell_at(QByteArrayView bytes, qsizetype at) const
    {
        const varint payload = varint_at(bytes, at);
        const varint rowid = payload.size == 0 ? varint() : varint_at(bytes, at + payload.size);
        if (rowid.size == 0 || payload.value < 0)
            return {};
        cell_place place{at, 0, rowid.value, payload.value, at + payload.size + rowid.size, 0};
        place.local_bytes = bytes_on_page(payload.value);
        const qint64 end = place.local + place.local_bytes + (place.local_bytes < payload.value ? 4 : 0);
        if (end > bytes.size())
            return {};
        place.end = end;
        return place;
    }

    /** Of a record of this size; the rest stands on overflow pages. */
    qint64 bytes_on_page(qint64 payload) const
    {
        const qint64 most = usable - 35;
        const qint64 least = (usable - 12) * 32 / 255 - 23;
        if (payload <= most)
            return payload;
        const qint64 fitting = least + (payload - least) % (usable - 4);
        return fitting <= most ? fitting : least;
    }

    void read_row(qint64 page, QByteArrayView bytes, const cell_place &place)
    {
        if (place.payload > most_row_bytes)
            return;
        QByteArrayView record = bytes.sliced(place.local, place.local_bytes);
        QByteArray whole;
        if (place.local_bytes < place.payload) {
            whole = record.toByteArray();
            if (!add_overflow(whole, number_at<quint32>(bytes, place.local + place.local_bytes), place.payload))
                return;
            record = whole;
        }
        if (const std::optional<QList<cell>> values = values_in(record))
            take({page, place.rowid, *values});
    }

    bool add_overflow(QByteArray &record, qint64 page, qint64 payload) const
    {
        while (record.size() < payload) {
            if (page < 2 || page > page_count() || free_pages.contains(page))
                return false;
            const QByteArrayView bytes = page_at(page);
            record += bytes.sliced(4, qMin<qint64>(usable - 4, payload - record.size()));
            page = number_at<quint32>(bytes, 0);
        }
        return true;
    }

    QByteArrayView database;
    const std::function<void(const leaf_row &row)> &take;
    qint64 page_size = 0;
    qint64 usable = 0; ///< bytes of a page without what is reserved at its end
    QSet<qint64> free_pages;
};

} // namespace

void for_each_leaf_row(QByteArrayView database, const std::function<void(const leaf_row &row)> &take)
{
    leaf_page_reader(database, take).run();
}
