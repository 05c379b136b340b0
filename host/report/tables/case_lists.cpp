// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/case_lists.h"

#include "host/report/reading/host_device_line.h"
#include "host/report/reading/salvage_line.h"
#include "host/report/reading/unparsed_line.h"
#include "host/report/reading/wal_change.h"
#include "host/report/tables/container_list.h"
#include "host/report/tables/evidence_list.h"

using namespace Qt::StringLiterals;

namespace {

template<typename Line>
using source_reader = QString (*)(const report_case &the_case, const report_source &source,
                                  const std::function<void(const Line &line)> &take);

/** A list that the host keeps for each source. */
template<typename Line>
case_list kept_list(const report_case &the_case, QLatin1StringView name, const line_columns<Line> &columns,
                    source_reader<Line> for_each_line, bool is_separated)
{
    const auto read = [&the_case, &columns, for_each_line](const line_taker &take) {
        QStringList problems;
        for (const report_source &source : the_case.sources) {
            const QString problem = for_each_line(the_case, source,
                                                  [&](const Line &line) { take(cells_of(columns, line)); });
            if (!problem.isEmpty())
                problems.append(source.problem_text(problem));
        }
        return problems;
    };
    return {name, columns_of(columns), is_separated, read};
}

} // namespace

QList<case_list> case_lists(const report_case &the_case)
{
    const auto read_evidence = [&the_case](const line_taker &take) {
        for_each_evidence_file(the_case, take);
        return QStringList();
    };
    const auto read_containers = [&the_case](const line_taker &take) {
        for_each_container_file(the_case,
                                [&take](const container_line &line) { take(cells_of(container_columns(), line)); });
        return QStringList();
    };
    QList<case_list> lists{
        {"evidence_files"_L1, columns_of(evidence_columns()), true, read_evidence},
        kept_list(the_case, "wal_changes"_L1, wal_columns(), for_each_wal_change, false),
        kept_list(the_case, "host_devices"_L1, host_device_columns(), for_each_host_device, true),
        kept_list(the_case, "unparsed_lines"_L1, unparsed_columns(), for_each_unparsed_line, true),
        kept_list(the_case, "salvage"_L1, salvage_columns(), for_each_salvaged_row, true),
    };
    if (has_containers(the_case))
        lists.insert(1, {"containers"_L1, columns_of(container_columns()), true, read_containers});
    return lists;
}
