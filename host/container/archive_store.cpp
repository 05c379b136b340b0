// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/archive_store.h"

#include "host/container/archive_input.h"
#include "host/container/member_name.h"
#include "host/files/host_error.h"
#include "host/files/system_error.h"
#include "host/files/utc_time.h"
#include "host/source/evidence_folder.h"

#include <QByteArray>
#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <archive.h>
#include <archive_entry.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int most_link_passes = 8;
constexpr qsizetype most_warnings = 20;

using archive_handle = std::unique_ptr<archive, int (*)(archive *)>;

struct format_name
{
    int code;
    QLatin1StringView name;
};

constexpr format_name format_names[] = {
    {ARCHIVE_FORMAT_TAR, "tar"_L1},
    {ARCHIVE_FORMAT_ZIP, "zip"_L1},
    {ARCHIVE_FORMAT_7ZIP, "7z"_L1},
    {ARCHIVE_FORMAT_CPIO, "cpio"_L1},
};
constexpr format_name filter_names[] = {
    {ARCHIVE_FILTER_GZIP, "gzip"_L1},
    {ARCHIVE_FILTER_BZIP2, "bzip2"_L1},
    {ARCHIVE_FILTER_XZ, "xz"_L1},
    {ARCHIVE_FILTER_ZSTD, "zstd"_L1},
};

template<size_t count>
QLatin1StringView name_of(const format_name (&names)[count], int code)
{
    const auto found = std::find_if(std::begin(names), std::end(names),
                                    [code](const format_name &known) { return known.code == code; });
    return found == std::end(names) ? QLatin1StringView() : found->name;
}

QString words_of(archive *opened)
{
    const char *words = archive_error_string(opened);
    QString text = words ? QString::fromUtf8(words) : u"no reason is known"_s;
    text[0] = text.at(0).toLower();
    return text;
}

QByteArrayView bytes_of(const char *utf8, const char *raw)
{
    return utf8 ? QByteArrayView(utf8) : raw ? QByteArrayView(raw) : QByteArrayView();
}

archive_input &input_of(void *data)
{
    return *static_cast<archive_input *>(data);
}

la_ssize_t give_next(archive *opened, void *data, const void **bytes)
{
    const std::optional<QByteArrayView> block = input_of(data).next();
    if (!block) {
        archive_set_error(opened, errno, "%s", std::strerror(errno));
        return ARCHIVE_FATAL;
    }
    *bytes = block->data();
    return la_ssize_t(block->size());
}

la_int64_t skip_bytes(archive *, void *data, la_int64_t bytes)
{
    return input_of(data).skip(bytes);
}

la_int64_t go_to_place(archive *, void *data, la_int64_t place, int from)
{
    archive_input &input = input_of(data);
    input.go_to(place + (from == SEEK_CUR ? input.position() : from == SEEK_END ? input.size() : 0));
    return input.position();
}

/** One pass over an archive: the library's handle, and the limits that it is held to. */
class archive_pass
{
public:
    archive_pass(const QString &archive_path, const container_observers &observers, const archive_limits &most)
        : path(archive_path)
        , observe(observers.read)
        , limits(most)
        , input(archive_path, observers.hashed)
        , opened(archive_read_new(), archive_read_free)
    {
        // Filters and formats one by one: others run programs, or take any text for a list of files.
        archive *const a = opened.get();
        archive_read_support_filter_gzip(a);
        archive_read_support_filter_bzip2(a);
        archive_read_support_filter_xz(a);
        archive_read_support_filter_zstd(a);
        archive_read_support_format_tar(a);
        archive_read_support_format_zip(a);
        archive_read_support_format_7zip(a);
        archive_read_support_format_cpio(a);
        archive_read_support_format_raw(a);
        if (!input.is_open())
            fail(system_error_text(errno));
        archive_read_set_read_callback(a, give_next);
        archive_read_set_skip_callback(a, skip_bytes);
        archive_read_set_seek_callback(a, go_to_place);
        archive_read_set_callback_data(a, &input);
        if (archive_read_open1(a) != ARCHIVE_OK)
            fail(words_of(a));
        if (archive_filter_count(a) > 2)
            fail(u"it is compressed more than once"_s);
    }

    /** The next member; null at the end, and where the archive is damaged. */
    archive_entry *next()
    {
        skip_rest();
        if (!damage.isEmpty())
            return nullptr;
        archive_entry *entry = nullptr;
        int result = ARCHIVE_RETRY;
        for (int tries = 0; result == ARCHIVE_RETRY && tries < 100; ++tries)
            result = archive_read_next_header(opened.get(), &entry);
        report_progress(result == ARCHIVE_EOF ? input.size() : archive_filter_bytes(opened.get(), -1));
        if (result == ARCHIVE_EOF)
            return nullptr;
        if (result < ARCHIVE_WARN) {
            damage = archive_read_has_encrypted_entries(opened.get()) == 1 && members == 0
                         ? u"it is encrypted, even the names of its files"_s
                         : words_of(opened.get());
            return nullptr;
        }
        if (++members > limits.members) {
            damage = u"it has more than "_s + QString::number(limits.members) + u" members"_s;
            return nullptr;
        }
        is_at_a_member = true;
        return entry;
    }

    /** Bytes of the member; throws stream_failure. */
    qsizetype read(char *bytes, qsizetype most)
    {
        const la_ssize_t count = archive_read_data(opened.get(), bytes, size_t(most));
        if (count < 0)
            throw stream_failure(words_of(opened.get()));
        all_delivered += count;
        report_progress(archive_filter_bytes(opened.get(), -1));
        check_ratio();
        return qsizetype(count);
    }

    QLatin1StringView format() const
    {
        const int code = archive_format(opened.get()) & ARCHIVE_FORMAT_BASE_MASK;
        return is_raw() ? name_of(filter_names, archive_filter_code(opened.get(), 0)) : name_of(format_names, code);
    }

    /** Of a tar the library makes them up, by counting. */
    bool has_inodes() const
    {
        return (archive_format(opened.get()) & ARCHIVE_FORMAT_BASE_MASK) != ARCHIVE_FORMAT_TAR;
    }

    bool is_raw() const
    {
        return (archive_format(opened.get()) & ARCHIVE_FORMAT_BASE_MASK) == ARCHIVE_FORMAT_RAW;
    }

    const QString &end_reason() const
    {
        return damage;
    }

    void finish_hash(container_file &file)
    {
        input.finish_hash(file);
    }

    [[noreturn]] void fail(const QString &reason) const
    {
        throw host_error(error_kind::not_found, u"the archive cannot be read: "_s + path + u": "_s + reason);
    }

private:
    /** What is compressed is unpacked here even where it is passed over, so that its ratio is looked at. */
    void skip_rest()
    {
        if (!std::exchange(is_at_a_member, false) || archive_filter_count(opened.get()) < 2)
            return;
        const void *block = nullptr;
        size_t size = 0;
        la_int64_t place = 0;
        while (archive_read_data_block(opened.get(), &block, &size, &place) == ARCHIVE_OK) {
            report_progress(archive_filter_bytes(opened.get(), -1));
            try {
                check_ratio();
            } catch (const stream_failure &failure) {
                damage = failure.reason();
                return;
            }
        }
    }

    void check_ratio() const
    {
        const qint64 unpacked = std::max(all_delivered, qint64(archive_filter_bytes(opened.get(), 0)));
        const qint64 packed = std::max(qint64(1), qint64(archive_filter_bytes(opened.get(), -1)));
        if (unpacked > limits.free_bytes && unpacked / packed >= limits.ratio)
            throw stream_failure(u"it unpacks to more than "_s + QString::number(limits.ratio)
                                     + u" times its size, which no evidence does"_s,
                                 true);
    }

    void report_progress(qint64 now)
    {
        if (now > reported)
            observe(now - std::exchange(reported, now));
    }

    QString path;
    const read_observer &observe;
    const archive_limits &limits;
    archive_input input; // before the handle, which reads from it
    archive_handle opened;
    QString damage;
    qint64 members = 0;
    qint64 all_delivered = 0;
    qint64 reported = 0;
    bool is_at_a_member = false;
};

class member_stream : public byte_stream
{
public:
    explicit member_stream(archive_pass &archive)
        : pass(archive)
    {
    }

    qsizetype read(char *bytes, qsizetype most) override
    {
        return pass.read(bytes, most);
    }

private:
    archive_pass &pass;
};

file_origin origin_of(const archive_pass &pass, archive_entry *entry, const QString &path)
{
    file_origin origin;
    origin.path = path;
    if (pass.has_inodes() && archive_entry_ino_is_set(entry))
        origin.inode = quint64(archive_entry_ino64(entry));
    if (archive_entry_mtime_is_set(entry)) {
        timespec time = {};
        time.tv_sec = archive_entry_mtime(entry);
        time.tv_nsec = archive_entry_mtime_nsec(entry);
        origin.modified = utc_text(time);
    }
    if (archive_entry_size_is_set(entry))
        origin.size = archive_entry_size(entry);
    return origin;
}

/** The file that a symbolic link at @p parts means, inside the archive; nothing where it leads out of it. */
std::optional<QStringList> link_target(const QStringList &parts, const QString &link)
{
    QStringList target = link.startsWith(u'/') ? QStringList() : parts.first(parts.size() - 1);
    for (const QString &part : link.split(u'/', Qt::SkipEmptyParts)) {
        if (part == "."_L1)
            continue;
        if (part == ".."_L1 && target.isEmpty())
            return {};
        if (part == ".."_L1)
            target.removeLast();
        else
            target.append(part);
    }
    return target;
}

/** An archive by libarchive. */
class library_archive : public archive_store
{
public:
    library_archive(const QString &archive_path, bool give_others, const container_observers &who,
                    const archive_limits &most)
        : path(archive_path)
        , others(give_others)
        , observers(who)
        , limits(most)
        , archive_file(file_now(archive_path))
    {
    }

    void visit(const evidence_search &search, const file_taker &take) override
    {
        read({evidence_search::may_match,
              [&search](const QStringList &parts) { return search.match(parts).has_value(); },
              [&search](const QStringList &parts) { return search.nearly_matches(parts); }},
             take);
    }

    void visit_named(const std::function<bool(const QStringList &)> &is_wanted, const file_taker &take) override
    {
        read({[](QByteArrayView) { return true; }, is_wanted, [](const QStringList &) { return false; }}, take);
    }

    void pass_over_others() override
    {
        others = false;
    }

    QString damage() const override
    {
        return end_reason;
    }

    QStringList warnings() const override
    {
        return passed_over_count <= passed_over.size()
                   ? passed_over
                   : passed_over
                         + QStringList{QString::number(passed_over_count - passed_over.size())
                                       + u" more names of the archive were passed over"_s};
    }

    QLatin1StringView format() const override
    {
        return container_format;
    }

    bool is_single_file() const override
    {
        return is_raw;
    }

    container_file file() const override
    {
        return archive_file;
    }

private:
    /** What a visit is after. */
    struct wish
    {
        std::function<bool(QByteArrayView name)> may_be_wanted; ///< by a quick look; no is certain
        std::function<bool(const QStringList &parts)> is_wanted;
        std::function<bool(const QStringList &parts)> is_nearly_wanted;
    };

    void read(const wish &wanted, const file_taker &take)
    {
        passed_over.clear();
        passed_over_count = 0;
        archive_pass pass(path, observers, limits);
        while (archive_entry *const entry = pass.next())
            meet(pass, entry, wanted, take);
        if (std::exchange(observers.hashed, {}))
            pass.finish_hash(archive_file);
        container_format = pass.format();
        end_reason = pass.end_reason();
        if (container_format.isEmpty())
            pass.fail(end_reason.isEmpty() ? u"its format is not known"_s : end_reason);
        for (int passes = 0; !links.isEmpty() && passes < most_link_passes; ++passes)
            follow_links(take);
        for (const stored_file &link : std::as_const(links)) {
            stored_file file = link;
            file.objection = u"it is a link that leads nowhere"_s;
            take(file, nullptr);
        }
        links.clear();
    }

    void pass_over(const QString &name, const QString &reason)
    {
        if (++passed_over_count <= most_warnings)
            passed_over.append(u"passed over in the archive, "_s + reason + u": "_s + name);
    }

    void meet(archive_pass &pass, archive_entry *entry, const wish &wanted, const file_taker &take)
    {
        if (pass.is_raw()) {
            is_raw = true;
            if (others)
                take_alone(pass, take);
            return;
        }
        const QByteArrayView bytes(archive_entry_pathname(entry));
        if (!others && is_plain_name(bytes) && !wanted.may_be_wanted(bytes))
            return;
        const member_name name = take_apart(bytes_of(archive_entry_pathname_utf8(entry), bytes.data()));
        const bool is_evidence = wanted.is_wanted(name.parts);
        if (!is_evidence && !name.danger.isEmpty())
            pass_over(name.text, name.danger);
        else if (!is_evidence && wanted.is_nearly_wanted(name.parts))
            pass_over(name.text, u"it is named as evidence but for letter case or the form of Unicode"_s);
        if (!is_evidence && (!others || !name.danger.isEmpty()))
            return;
        stored_file file;
        file.parts = name.parts;
        file.origin = origin_of(pass, entry, name.text);
        if (!name.danger.isEmpty())
            refuse(file, name.danger);
        else
            look_at(entry, file, is_evidence);
        if (file.origin.path.isEmpty()) // a link, which is followed later
            return;
        member_stream stream(pass);
        take(file, file.objection.isEmpty() && !file.is_folder ? &stream : nullptr);
    }

    static void refuse(stored_file &file, const QString &reason)
    {
        file.objection = reason;
        file.is_refused = true;
    }

    void look_at(archive_entry *entry, stored_file &file, bool is_evidence)
    {
        const char *symbolic = archive_entry_symlink(entry);
        const char *hard = archive_entry_hardlink(entry);
        if (hard || symbolic) {
            if (is_evidence)
                remember_link(entry, file);
            if (is_evidence && !file.objection.isEmpty())
                return;
            file.origin.path.clear();
            return;
        }
        file.is_folder = archive_entry_filetype(entry) == AE_IFDIR;
        if (!file.is_folder && archive_entry_filetype(entry) != AE_IFREG)
            refuse(file, u"it is not a regular file"_s);
        if (archive_entry_is_data_encrypted(entry) == 1) {
            refuse(file, u"it is encrypted"_s);
            file.is_encrypted = true;
        }
    }

    void remember_link(archive_entry *entry, stored_file &file)
    {
        const char *hard = archive_entry_hardlink(entry);
        const QString text = hard ? evidence_name_text(bytes_of(archive_entry_hardlink_utf8(entry), hard))
                                  : evidence_name_text(
                                      bytes_of(archive_entry_symlink_utf8(entry), archive_entry_symlink(entry)));
        const std::optional<QStringList> target = hard ? link_target({u"."_s}, text) : link_target(file.parts, text);
        if (!target || target->isEmpty()) {
            refuse(file, u"it is a link that leads out of the container, to "_s + text);
            return;
        }
        links.insert(*target, file);
    }

    /** Another pass, for what links mean. A link to a link waits for the pass after it. */
    void follow_links(const file_taker &take)
    {
        QHash<QStringList, stored_file> wanted;
        wanted.swap(links);
        QHash<QStringList, stored_file> left = wanted;
        archive_pass pass(path, observers, limits);
        while (archive_entry *const entry = pass.next()) {
            const member_name name = take_apart(
                bytes_of(archive_entry_pathname_utf8(entry), archive_entry_pathname(entry)));
            const auto link = wanted.constFind(name.parts);
            if (link == wanted.cend() || !name.danger.isEmpty())
                continue;
            left.remove(name.parts);
            stored_file file = *link;
            file.origin = origin_of(pass, entry, name.text);
            if (archive_entry_symlink(entry) || archive_entry_hardlink(entry)) {
                remember_link(entry, file);
                if (file.objection.isEmpty())
                    continue;
            } else {
                look_at(entry, file, true);
            }
            member_stream stream(pass);
            take(file, file.objection.isEmpty() && !file.is_folder ? &stream : nullptr);
        }
        for (auto lost = left.cbegin(); lost != left.cend(); ++lost) {
            stored_file file = *lost;
            file.objection = u"it is a link that leads nowhere"_s;
            take(file, nullptr);
        }
    }

    /** A compressed file: its name is the container's without its ending. */
    void take_alone(archive_pass &pass, const file_taker &take)
    {
        const QFileInfo container(path);
        const QString suffix = container.suffix().toLower();
        const bool has_ending = QStringList{u"gz"_s, u"bz2"_s, u"xz"_s, u"zst"_s}.contains(suffix);
        stored_file file;
        file.parts = {has_ending && !container.completeBaseName().isEmpty() ? container.completeBaseName()
                                                                            : container.fileName()};
        file.origin.path = file.parts.first();
        file.is_alone = true;
        member_stream stream(pass);
        take(file, &stream);
    }

    QString path;
    bool others; ///< files that are no evidence by their paths are given, too
    container_observers observers;
    archive_limits limits;
    container_file archive_file;
    QHash<QStringList, stored_file> links; ///< by what they lead to
    QStringList passed_over;
    qsizetype passed_over_count = 0;
    QString end_reason;
    QLatin1StringView container_format;
    bool is_raw = false;
};

} // namespace

std::unique_ptr<archive_store> open_archive(const QString &path, bool others, const container_observers &observers,
                                            const archive_limits &limits)
{
    return std::make_unique<library_archive>(path, others, observers, limits);
}

QString archive_library()
{
    return QString::fromLatin1(archive_version_string());
}
