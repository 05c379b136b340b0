// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_LEAF_PAGES_H
#define HOST_SOURCE_LEAF_PAGES_H

#include "host/text/cell.h"

#include <QByteArrayView>
#include <QList>

#include <functional>

/** A row as it stands on a page of a database file. */
struct leaf_row
{
    qint64 page = 0; ///< from 1
    qint64 rowid = 0;
    QList<cell> values; ///< their bytes are valid during the call
};

/**
 * Gives every row of the tables in a database file (https://www.sqlite.org/fileformat.html) that stands on an intact
 * leaf page, in the order of the pages, whether or not anything leads to that page. A page is intact when its header,
 * each of its cells and the order of its rowids are what they must be. Pages of the free list hold deleted rows and are
 * left out; so are rows of more than 1 MiB and those whose overflow pages are damaged. Nothing for bytes that are no
 * database.
 */
void for_each_leaf_row(QByteArrayView database, const std::function<void(const leaf_row &row)> &take);

#endif
