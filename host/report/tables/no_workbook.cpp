// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/host_error.h"
#include "host/report/tables/workbook.h"

using namespace Qt::StringLiterals;

bool has_workbooks()
{
    return false;
}

std::unique_ptr<table_store> make_workbook(const QString &, workbook_notes &, int)
{
    throw host_error(error_kind::refused, u"xlsx: this program was built without libxlsxwriter"_s);
}
