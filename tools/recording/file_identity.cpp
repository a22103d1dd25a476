// SPDX-License-Identifier: MIT
#include "recording/file_identity.hpp"

namespace kelvora::recording {
namespace {

bool getStatus(const FileTarget& target, struct stat& status) {
    return target.descriptor ? ::fstat(*target.descriptor, &status) == 0
                             : ::stat(target.path.c_str(), &status) == 0;
}

}  // namespace

FileIdentity::FileIdentity(const FileTarget& target) {
    struct stat status {};
    FileTarget place = target;
    while (!getStatus(place, status) && place.path.has_relative_path()) {
        if (place.path.has_filename()) {
            missing = missing.empty() ? place.path.filename() : place.path.filename() / missing;
        }
        place = {place.path.parent_path()};
    }
    device = status.st_dev;
    number = status.st_ino;
    mode = missing.empty() ? status.st_mode : 0;
}

bool FileIdentity::operator==(const FileIdentity& other) const {
    return device == other.device && number == other.number && missing == other.missing;
}

}  // namespace kelvora::recording
