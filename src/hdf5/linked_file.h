#pragma once

namespace orvml_io {

/// Tells whether an external link leads to a file that exists, in one of the places where HDF5
/// looks: the path as it is; the folders of HDF5_EXT_PREFIX; the folder of the file with the link,
/// by its name and by the name that symbolic links in it lead to; the working directory. A
/// directory is no file. When that cannot be found out the answer is yes, because such a link is
/// refused.
[[nodiscard]] bool linkLeadsToAFile(const char* fileWithLink, const char* target) noexcept;

}  // namespace orvml_io
