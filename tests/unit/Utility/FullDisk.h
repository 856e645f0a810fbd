#pragma once

/// Where the suite's private world has a disk of 64 KiB.
constexpr char kSmallDisk[] = "/opt/small-disk";
