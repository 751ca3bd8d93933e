#pragma once

#include <QString>

// A short name of the running system: "Linux_" and the kernel version with its
// dots turned into "_" (for example "Linux_6_1_0-18-amd64"). The part before
// the first "_" is the family that picks the infrared command line.
QString operatingSystemName();
