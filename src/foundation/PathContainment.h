#pragma once

#include <QString>

namespace quillbay {

// A path is inside a root when it equals the root, or begins with the root followed by
// "/". Pure text: callers decide which side is standardized and which has its links
// resolved. "/a/b2" is not inside "/a/b"; the root "/" contains every absolute path.
bool isPathInside(const QString& path, const QString& root);

// The path with "." and ".." segments and repeated or trailing slashes removed, without
// touching the file system (links are not resolved).
QString standardizedPath(const QString& path);

// The path with every link resolved, as far as the file system allows: the longest
// existing prefix is resolved and the rest appended as it stands. Empty for an empty path.
QString resolvedPath(const QString& path);

} // namespace quillbay
