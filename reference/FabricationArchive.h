#pragma once
// Archives of fabrication files, read and written with libarchive: a .zip, .tar.gz or .tgz is
// unpacked into a folder for JobFromFolder, and a folder of exported files is packed as a .zip.
//
// Unpacking never trusts the archive: an entry whose path is absolute or climbs out with "..",
// a link, a device or anything else that is not a plain file or folder, more entries or bytes
// than the limits allow, or a damaged archive refuses the whole archive, with a message naming
// the archive and the entry. An archive's files are read as one folder: their folders inside the
// archive are not kept (a layer is named after its file), and two files of the same name
// refuse the archive. A refused archive leaves nothing in the folder.

#include <cstdint>
#include <string>

namespace wcref {

struct ArchiveLimits {
    int64_t entry_bytes = int64_t{512} << 20;  // one file unpacked
    int64_t total_bytes = int64_t{2} << 30;    // all files unpacked
    int entries = 20000;
};

class FabricationArchive {
public:
    // Whether the name ends in ".zip", ".tar.gz" or ".tgz" (in any case).
    static bool isArchiveName(const std::string& path);

    // Unpacks the files of `archive` into the existing folder `folder`; false with the reason.
    static bool unpack(const std::string& archive, const std::string& folder, std::string& message,
                       const ArchiveLimits& limits = {});

    // Writes the files below `folder` (with their paths relative to it) as the .zip `path`,
    // whole or not at all; false with the reason.
    static bool writeZip(const std::string& folder, const std::string& path, std::string& message);
};

}  // namespace wcref
