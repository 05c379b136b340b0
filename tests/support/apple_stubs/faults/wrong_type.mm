// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#import <CoreServices/CoreServices.h>
#import <Foundation/Foundation.h>

MDItemRef item_at(NSString *path);

MDItemRef item_at(NSString *path)
{
    return MDItemCreate(kCFAllocatorDefault, path);
}
