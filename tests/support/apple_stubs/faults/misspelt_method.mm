// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#import <Foundation/Foundation.h>

NSUInteger length_of(NSString *text);

NSUInteger length_of(NSString *text)
{
    return [text lenght];
}
