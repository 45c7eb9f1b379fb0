#include "Platform/Foundation/FileManager.h"

#include "Platform/Foundation/Characters.h"
#include "Platform/Foundation/FatalError.h"
#include "Platform/Foundation/FileTask.h"
#include "Platform/Foundation/macos/Conversions.h"

namespace Platform {

namespace {

using Code = FileError::Code;

/// A directory's URL, whose path the system writes with or without its last slash.
URL directoryURL(NSURL* url) { return URL::fromFilePath(fromNSString(url.path), true); }

Code codeFor(NSInteger cocoaError) {
    switch (cocoaError) {
    case NSFileNoSuchFileError:
        return Code::noSuchFile;
    case NSFileWriteNoPermissionError:
        return Code::noPermission;
    case NSFileWriteInvalidFileNameError:
        return Code::invalidName;
    case NSFileWriteFileExistsError:
        return Code::fileExists;
    case NSFileWriteOutOfSpaceError:
        return Code::outOfSpace;
    case NSFileWriteVolumeReadOnlyError:
        return Code::readOnlyVolume;
    default:
        return Code::unknown;
    }
}

/// The system call's own reason is the more exact one; Foundation's sentence is its own.
FileError failure(const FileTask& task, NSError* error) {
    NSError* const underlying = error.userInfo[NSUnderlyingErrorKey];
    if ([underlying isKindOfClass:NSError.class] && [underlying.domain isEqualToString:NSPOSIXErrorDomain]) {
        return {task.failure(static_cast<int>(underlying.code)).code(),
                fromNSString(error.localizedDescription)};
    }
    return {codeFor(error.code), fromNSString(error.localizedDescription)};
}

} // namespace

URL FileManager::homeDirectory() const {
    return directoryURL(NSFileManager.defaultManager.homeDirectoryForCurrentUser);
}

std::vector<URL> FileManager::applicationSupportDirectories() const {
    std::vector<URL> directories;
    for (NSURL* const url in [NSFileManager.defaultManager URLsForDirectory:NSApplicationSupportDirectory
                                                                  inDomains:NSUserDomainMask]) {
        directories.push_back(directoryURL(url));
    }
    if (directories.empty()) {
        fatalError("the system names no application support directory");
    }
    return directories;
}

void FileManager::createDirectory(const std::string& path, bool withIntermediateDirectories,
                                  std::optional<unsigned> posixPermissions) const {
    const FileTask task = {.subject = "directory", .verb = "created", .path = path};
    task.requireUsablePath();
    if (!isValidUTF8(path)) {
        throw task.failure(Code::invalidName, "The name is no text");
    }
    NSDictionary* const attributes = posixPermissions
                                         ? @{NSFilePosixPermissions : @(*posixPermissions)}
                                         : nil;
    NSError* error = nil;
    if (![NSFileManager.defaultManager createDirectoryAtPath:toNSString(path)
                                 withIntermediateDirectories:withIntermediateDirectories ? YES : NO
                                                  attributes:attributes
                                                       error:&error]) {
        throw failure(task, error);
    }
}

} // namespace Platform
