// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SAMPLE_DEVICE_NAMES_H
#define HOST_SAMPLE_DEVICE_NAMES_H

#include <QStringView>

/**
 * Ordinary names, and names chosen to break tools. What cannot be seen in a source text is written as an escape.
 */
inline constexpr QStringView other_device_names[] = {
    u"Living Room TV",
    u"Kitchen speaker",
    u"Heart rate belt 7F21",
    u"Anna\u2019s headphones",
    u"O'Neil's \"good\" mouse",
    u"Zoë’s Kopfhörer",
    u"Кухонная колонка",
    u"リビングのスピーカー",
    u"客厅音箱",
    u"거실 스피커",
    u"سماعات ليلى",
    u"האוזניות של דנה",
    u"रसोई स्पीकर",
    u"ลำโพงห้องครัว",
    u"🎧",
    u"Zoe 👩🏽\u200d💻 laptop",
    u"Fitness 🏃\u200d♀\uFE0F band",
    u"Flag 🇩🇪🇯🇵",
    u"decomposed: Zoe\u0308",
    u"=HYPERLINK(\"http://example.invalid\",\"open me\")",
    u"@SUM(1+1)",
    u"+1 speaker",
    u"-2+3",
    u"=cmd|'/C calc'!A0",
    u"<b>bold</b><script>alert(1)</script>",
    u"</script><script>alert(1)</script>",
    u"<img src=x onerror=alert(1)>",
    u"<!--",
    u"]]>",
    u"javascript:alert(1)",
    u"';DROP TABLE devices;--",
    u"\x1b[31mred\x1b[0m \x1b]0;title\x07",
    u"back\bspace\tand\nnew line",
    u"photo\u202Egpj.exe",
    u"\u2066isolated\u2069",
    u"a line\u2028and a paragraph\u2029end",
    u"zero\u200Bwidth\uFEFF",
    u" blanks around ",
    u"NULL",
    u"C:\\temp\\u{1b}",
    u"",
};

inline constexpr QStringView paired_device_names[] = {
    u"Magic-free keyboard",
    u"Anna\u2019s headphones",
    u"Anna’s earbuds – left",
    u"Trackpad",
    u"Car kit",
    u"Клавиатура",
    u"ワイヤレスマウス",
    u"手环 5",
    u"ساعة",
    u"Pen 🖊\uFE0F",
    u"Phone 📱 of 👨\u200d👩\u200d👧",
    u"\"quoted\" & <i>marked up</i>",
    u"=1+1",
    u"\x1b[2Jcleared",
    u"\u202Eright to left",
    u"Hearing aid L",
    u"Hearing aid R",
    u"Game controller",
    u"Printer; office, 2nd floor",
};

#endif
