// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_PLUGIN_HELPER_FUNCTIONS_H
#define COMMON_PLUGIN_HELPER_FUNCTIONS_H

#include <QString>
#include <QStringList>

class QWidget;

/**
 * Classifies files as image, audio or video by their extension, and makes ad-hoc copies: working copies of evidence
 * files under a folder that the frame names. A plain object without virtual operations.
 */
class plugin_helper_functions
{
public:
    /** Fills the three extension lists. The parent is not kept: the object stands outside Qt's object tree. */
    explicit plugin_helper_functions(QWidget *parent = nullptr);
    ~plugin_helper_functions();

    /** Takes back a cancellation. */
    void set_essentials();
    void set_cancel_extraction(bool cancel);

    /** Whether the extension of the name, letter case and blanks around the name ignored, is one of the list. */
    bool check_is_image_by_extn(QString file_name);
    bool check_is_video_by_extn(QString file_name);
    bool check_is_audio_by_extn(QString file_name);

    /** The folder for ad-hoc copies, with or without a final "/". */
    void set_adhoc_parent_path(QString path);

    /**
     * Copies a database with its "-shm" and "-wal" companions under a name that is free in the ad-hoc folder.
     * Returns the copy's path, or an empty text when the main file could not be copied.
     */
    QString get_adhoc_path_for_database(QString source);
    /** The same for any other file, without companions. */
    QString get_adhoc_path_for_regular_file(QString source);

private:
    // Tests look at what was set, which no host asks for.
    friend class test_frame;

    void initialize_image_extension_list();
    void initialize_audio_extension_list();
    void initialize_video_extension_list();
    QString free_adhoc_path(const QString &source, const QStringList &companions = {}) const;

    bool bool_cancel_extraction = false;
    QStringList image_extension_list;
    QStringList audio_extension_list;
    QStringList video_extension_list;
    QString adhoc_parent_path;
};

#endif
