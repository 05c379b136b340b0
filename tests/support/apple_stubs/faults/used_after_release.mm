// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#import <Foundation/Foundation.h>

NSString *text_of(NSDate *date);

NSString *text_of(NSDate *date)
{
    NSDateFormatter *formatter = [[NSDateFormatter alloc] init];
    [formatter release];
    return [formatter stringFromDate:date];
}
