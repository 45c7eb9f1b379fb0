#include "Platform/Foundation/FileTask.h"

#include <cerrno>
#include <system_error>
#include <utility>

namespace Platform {

namespace {

using Code = FileError::Code;

Code codeFor(int systemError) {
    switch (systemError) {
    case ENOENT:
        return Code::noSuchFile;
    case EACCES:
    case EPERM:
        return Code::noPermission;
    case EEXIST:
        return Code::fileExists;
    case EISDIR:
        return Code::isDirectory;
    case ENOTDIR:
        return Code::notADirectory;
    case EINVAL:
        return Code::invalidName;
    case ENAMETOOLONG:
        return Code::nameTooLong;
    case ELOOP:
        return Code::tooManyLinks;
    case EFBIG:
    case EOVERFLOW:
        return Code::tooLarge;
    case ENOSPC:
    case EDQUOT:
        return Code::outOfSpace;
    case EROFS:
        return Code::readOnlyVolume;
    default:
        return Code::unknown;
    }
}

} // namespace

FileError FileTask::failure(Code code, std::string_view reason) const {
    std::string sentence = "The ";
    sentence.append(subject).append(" \"").append(path).append("\" could not be ").append(verb);
    sentence.append(": ").append(reason).append(".");
    return {code, std::move(sentence)};
}

FileError FileTask::failure(int systemError) const {
    return failure(codeFor(systemError), std::generic_category().message(systemError));
}

void FileTask::requireUsablePath() const {
    if (path.empty()) {
        throw failure(Code::invalidName, "The name is empty");
    }
    if (path.find('\0') != std::string::npos) {
        throw failure(Code::invalidName, "The name holds a NUL character");
    }
}

} // namespace Platform
