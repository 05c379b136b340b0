// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/evidence_file.h"
#include "common/folder_entries.h"
#include "common/function_log.h"
#include "common/plugin_static_function.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>

using namespace Qt::StringLiterals;

namespace {

using std::filesystem::path;

constexpr qint64 tree_block_bytes = 102400;
/** Of one folder in one call; real trees link to a folder a few times. */
constexpr int most_copies_of_a_folder = 64;

const QString leads_into_source_text = u"a link leads into the source"_s;

constexpr function_log log_copy(u"static void plugin_static_function::copy_directory(QString, QString)");

void log_source_failure(const path &source, const QString &error)
{
    log_copy(u"[copy_directory] source file open ----FAILED---- :"_s + to_text(source));
    log_copy(u"[copy_directory] Error:"_s + error);
}

void log_destination_failure(const path &destination, const QString &error)
{
    log_copy(u"[copy_directory] destination file open ----FAILED---- :"_s + to_text(destination));
    log_copy(u"[copy_directory] Error:"_s + error);
}

/** Joined as the log shows it, with a second "/" where the folder ends with one. */
path joined(const path &folder, const std::filesystem::directory_entry &entry)
{
    return folder.native() + '/' + entry.path().filename().native();
}

/** One call of copy_directory(). */
class tree_copy
{
public:
    tree_copy(const path &source, const path &destination)
        : outermost_source(source)
    {
        std::error_code error;
        real_destination = std::filesystem::weakly_canonical(destination, error);
    }

    void copy_folder(const path &source, const path &destination);

private:
    bool may_enter(const path &real_folder);
    void copy_file(const path &source, const path &destination) const;
    bool leads_into_source(const path &file) const;
    std::optional<QString> open_destination(QFile &file, const path &source, const path &destination) const;

    path outermost_source;
    path real_destination;
    std::vector<path> entered; ///< real paths of the folders on the way down
    std::map<path, int> copies;
};

void tree_copy::copy_folder(const path &source, const path &destination)
{
    std::error_code error;
    if (!std::filesystem::is_directory(source, error)) {
        // "diectory": text is part of the log format.
        log_copy(u"[copy_directory] source diectory does not exist ----FAILED---- :"_s + to_text(source));
        return;
    }
    if (destination.empty()) { // "/name" would be a place of its own
        log_destination_failure(destination, qt_error_string(ENOENT));
        return;
    }
    if (!is_safe_target(destination, outermost_source)) {
        log_destination_failure(destination, leads_into_source_text);
        return;
    }
    const path real_source = std::filesystem::canonical(source, error);
    if (!may_enter(real_source))
        return;

    if (!std::filesystem::is_directory(destination, error))
        std::filesystem::create_directories(destination, error);
    entered.push_back(real_source);
    const std::vector<std::filesystem::directory_entry> entries = folder_entries(source);
    for (const std::filesystem::directory_entry &entry : entries) {
        if (plugin_static_function::bool_cancel_extraction)
            break;
        if (entry.is_regular_file(error))
            copy_file(joined(source, entry), joined(destination, entry));
    }
    for (const std::filesystem::directory_entry &entry : entries) {
        if (plugin_static_function::bool_cancel_extraction)
            break;
        if (entry.is_directory(error))
            copy_folder(joined(source, entry), joined(destination, entry));
    }
    entered.pop_back();
}

/**
 * False for a folder that we are in already, and for the destination, which may lie inside the source. False with a
 * report for one that links lead to too often: links that double on each level would fill the disk.
 */
bool tree_copy::may_enter(const path &real_folder)
{
    if (std::find(entered.cbegin(), entered.cend(), real_folder) != entered.cend())
        return false;
    if (!entered.empty() && real_folder == real_destination)
        return false;
    if (++copies[real_folder] <= most_copies_of_a_folder)
        return true;
    log_source_failure(real_folder, qt_error_string(ELOOP));
    return false;
}

/** A file that is cut short by the cancel flag stays as far as it was written. */
void tree_copy::copy_file(const path &source, const path &destination) const
{
    std::error_code error;
    if (!std::filesystem::exists(source, error))
        return;
    QFile source_file;
    if (const std::optional<QString> failure = open_evidence_file(source_file, source)) {
        log_source_failure(source, *failure);
        return;
    }
    QFile destination_file;
    if (const std::optional<QString> failure = open_destination(destination_file, source, destination)) {
        log_destination_failure(destination, *failure);
        return;
    }

    QByteArray block(tree_block_bytes, Qt::Uninitialized);
    qint64 count = 0;
    do {
        count = source_file.read(block.data(), block.size());
        if (count > 0)
            destination_file.write(block.constData(), count);
    } while (count > 0 && !plugin_static_function::bool_cancel_extraction);
    source_file.close();
    destination_file.flush();
}

/** Whether @p file, whose folder is safe, is a symbolic or hard link to something in the source. */
bool tree_copy::leads_into_source(const path &file) const
{
    std::error_code error;
    if (std::filesystem::is_symlink(file, error))
        return !is_safe_target(file, outermost_source);
    const auto links = std::filesystem::hard_link_count(file, error);
    return !error && links > 1 && visit_below(outermost_source, [&file](const std::filesystem::directory_entry &entry) {
        return is_same_file(entry.path(), file);
    });
}

/** Opens the destination emptied. Returns the error's text, nothing when the file is open. */
std::optional<QString> tree_copy::open_destination(QFile &file, const path &source, const path &destination) const
{
    if (is_same_file(source, destination))
        return u"source and destination are the same file"_s;
    if (leads_into_source(destination))
        return leads_into_source_text;
    const int descriptor = ::open(destination.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (descriptor == -1)
        return qt_error_string(errno);
    if (!file.open(descriptor, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle))
        return file.errorString();
    return {};
}

/** Folders first, then by name. What cannot be removed stays. */
void remove_tree(const path &folder)
{
    std::vector<std::filesystem::directory_entry> entries = folder_entries(folder);
    std::sort(entries.begin(), entries.end(), [](const auto &first, const auto &second) {
        return std::pair(!is_real_folder(first), first.path()) < std::pair(!is_real_folder(second), second.path());
    });
    std::error_code error;
    for (const std::filesystem::directory_entry &entry : entries) {
        if (is_real_folder(entry))
            remove_tree(entry.path());
        else
            std::filesystem::remove(entry.path(), error);
    }
    std::filesystem::remove(folder, error);
}

} // namespace

void plugin_static_function::copy_directory(QString source, QString destination)
{
    tree_copy(to_path(source), to_path(destination)).copy_folder(to_path(source), to_path(destination));
}

void plugin_static_function::remove_directory(QString dir)
{
    std::string name = to_path(dir).native();
    while (name.size() > 1 && name.back() == '/') // would follow a link
        name.pop_back();
    std::error_code error;
    if (!std::filesystem::is_directory(name, error))
        return;
    if (std::filesystem::is_symlink(name, error))
        std::filesystem::remove(name, error);
    else
        remove_tree(std::filesystem::canonical(name, error)); // "x/." cannot be removed under that name
}
