#include "qor/tools/file/operations.h"

#include "platform/file_system.h"
#include "platform/shell.h"
#include "qor/tools/container/array.h"
#include "qor/tools/exception.h"
#include "qor/tools/file/find.h"

namespace qor::tools::file {

namespace {

[[noreturn]] void Fail(char16_t const *text) { throw exception(0, text); }

bool IsFolder(char16_t const *path) { return path && platform::IsDirectory(path); }

// A folder that is not reached through a symbolic link: a link is handled as
// the entry it is and never followed.
bool IsRealFolder(char16_t const *path) { return IsFolder(path) && !platform::IsLink(path); }

// The common first steps of Move and _CopyFile.
void CheckSource(char16_t const *from, char16_t const *to, bool overwrite, char16_t const *failure) {
    if (!from || !platform::Exists(from) || IsRealFolder(from)) Fail(failure);
    if (overwrite) _ClearReadOnly(to);
    if (!overwrite && to && platform::Exists(to) && !IsRealFolder(to)) Fail(failure);
}

// A network path (//server/share or \\server\share) names no folder that can
// be made here.
bool IsNetworkPath(string const &normalized) { return normalized.Compare(u"//", 2) == 0; }

struct removal {
    bool mForce;
    container::array<string> mFolders;
};

struct copying {
    string mFrom, mTo;
    bool mOverwrite;
    container::array<string> mFolders;

    string Target(string const &source) const {
        string target(source);
        target.Replace(mFrom, mTo, 0, string::kAll);
        return target;
    }
};

// Copies the tree and removes the source: a move that a rename cannot do.
void CopyAndRemove(char16_t const *from, char16_t const *to, bool overwrite) {
    CopyFolder(from, to, overwrite, true);
    RemoveFolder(from, overwrite);
}

}  // namespace

void _ClearReadOnly(char16_t const *path) {
    DWORD attributes = 0;
    if (!path || !platform::GetAttributes(path, attributes) || !(attributes & FILE_ATTRIBUTE_READONLY)) return;
    if (!platform::SetAttributes(path, attributes & ~FILE_ATTRIBUTE_READONLY)) Fail(u"file SetFileAttributes");
}

void Move(char16_t const *from, char16_t const *to, bool overwrite) {
    CheckSource(from, to, overwrite, u"file MoveFileEx");
    if (!platform::MoveFile(from, to, overwrite)) Fail(u"file MoveFileEx");
}

void _CopyFile(char16_t const *from, char16_t const *to, bool overwrite) {
    CheckSource(from, to, overwrite, u"file CopyFile");
    if (!platform::CopyFile(from, to, !overwrite)) Fail(u"file CopyFile");
}

void _RemoveFile(char16_t const *path, bool force) {
    if (!path || !platform::Exists(path) || IsRealFolder(path)) return;
    if (force) _ClearReadOnly(path);
    // A read-only file stays where it is unless forced, as on the original platform.
    DWORD attributes = 0;
    if (!force && platform::GetAttributes(path, attributes) && (attributes & FILE_ATTRIBUTE_READONLY)) {
        Fail(u"file remove");
    }
    if (!platform::RemoveFile(path)) Fail(u"file remove");
}

string _NormalizePath(char16_t const *path) {
    string p(path);
    p.Replace(u'\\', u'/', 0, string::kAll);
    return p;
}

string _DriveOf(char16_t const *path) {
    string p = _NormalizePath(path);
    int colon = p.Find(u':', 0);
    return colon < 0 ? string() : string(p.Safe(), colon) + u":";
}

void CreateFolder(char16_t const *path) {
    if (IsFolder(path)) return;
    string p = _NormalizePath(path);
    if (IsNetworkPath(p)) Fail(u"file CreateDirectory");
    string d = _DriveOf(p);
    if (!d.IsEmpty()) p = p.Mid(2);
    auto parts = p.Tokenize(u"/");
    if (parts.Size() == 0) return;
    static char16_t const *leading[] = {u"", u".", u".."};
    string c = d;
    for (int i = 0; i < parts.Size(); ++i) {
        if (i == 0 && string::Matching(parts[0], leading, 3) >= 0) {
            c += parts[0];
            continue;
        }
        c += i == 0 ? string(u"./") + parts[0] : string(u"/") + parts[i];
        if (!IsFolder(c) && !platform::CreateDirectory(c)) Fail(u"file CreateDirectory");
    }
}

void _Walk(char16_t const *folder, void *context, void (*callback)(void *context, find &entry)) {
    find f(folder);
    while (f.Next()) {
        if (f.IsDots()) continue;
        callback(context, f);
        if (f.IsDirectory()) _Walk(f.FilePath(), context, callback);
    }
}

void RemoveFolder(char16_t const *path, bool force) {
    if (!IsFolder(path)) return;
    removal context{force, container::array<string>()};
    context.mFolders.Add(string(path));
    // A read-only folder keeps its entries: with force, each folder is made
    // writable before the walk goes into it.
    if (force) _ClearReadOnly(path);
    _Walk(path, &context, [](void *c, find &entry) {
        auto *r = static_cast<removal *>(c);
        if (entry.IsDirectory()) {
            if (r->mForce) _ClearReadOnly(entry.FilePath());
            r->mFolders.Add(entry.FilePath());
        } else {
            _RemoveFile(entry.FilePath(), r->mForce);
        }
    });
    for (int i = context.mFolders.Size() - 1; i >= 0; --i) {
        if (force) _ClearReadOnly(context.mFolders[i]);
        if (!platform::RemoveDirectory(context.mFolders[i])) Fail(u"file RemoveDirectory");
    }
}

void RenameFolder(char16_t const *from, char16_t const *to, bool force) {
    if (IsFolder(from)) {
        if (force) _ClearReadOnly(from);
        if (platform::Rename(from, to)) return;
    }
    Fail(u"file rename");
}

void CopyFolder(char16_t const *from, char16_t const *to, bool overwrite, bool attributes) {
    if (!IsFolder(from)) return;
    // A copy into its own subfolder would copy itself again and again.
    if (platform::IsWithin(to, from)) Fail(u"file CreateDirectory");
    CreateFolder(to);
    copying context{string(from), string(to), overwrite, container::array<string>()};
    _Walk(from, &context, [](void *c, find &entry) {
        auto *k = static_cast<copying *>(c);
        string source = entry.FilePath();
        string target = k->Target(source);
        if (entry.IsDirectory()) {
            CreateFolder(target);
            k->mFolders.Add(source);
        } else {
            _CopyFile(source, target, k->mOverwrite);
        }
    });
    if (!attributes) return;
    for (int i = 0; i < context.mFolders.Size(); ++i) {
        CopyAttribute(context.mFolders[i], context.Target(context.mFolders[i]));
    }
}

void MoveFolder(char16_t const *from, char16_t const *to, bool overwrite) {
    if (!IsFolder(from)) Fail(u"file MoveFileEx");
    if (overwrite) _ClearReadOnly(to);
    bool otherDrive = _DriveOf(from).CompareNoCase(_DriveOf(to)) != 0;
    if (otherDrive || IsFolder(to) || !platform::SameFileSystem(from, to)) {
        CopyAndRemove(from, to, overwrite);
        return;
    }
    if (!platform::MoveFile(from, to, overwrite)) Fail(u"file MoveFileEx");
}

void CopyAttribute(char16_t const *from, char16_t const *to) {
    DWORD attributes = 0;
    if (!platform::GetAttributes(from, attributes) || !platform::SetAttributes(to, attributes)) {
        Fail(u"file FileAttributes");
    }
    FILETIME creation{}, access{}, write{};
    // The target is opened for writing next: a file that is read-only by now
    // cannot be, as on the original platform; a folder can.
    DWORD now = 0;
    if (!platform::GetAttributes(to, now) || ((now & FILE_ATTRIBUTE_READONLY) && !(now & FILE_ATTRIBUTE_DIRECTORY))) {
        Fail(u"file CreateFile");
    }
    if (platform::GetTimes(from, creation, access, write)) platform::SetTimes(to, access, write);
}

void TrashBox(int operation, char16_t const *from, char16_t const *to) {
    bool ok = false;
    try {
        switch (operation) {
            case FO_DELETE: ok = from && *from && platform::Trash(_NormalizePath(from)); break;
            case FO_MOVE:
                if (IsRealFolder(from) && to && !platform::SameFileSystem(from, to)) {
                    CopyAndRemove(from, to, true);
                    ok = true;
                } else {
                    ok = from && to && platform::MoveFile(from, to, true);
                }
                break;
            case FO_RENAME: ok = from && to && platform::Rename(from, to); break;
            case FO_COPY:
                if (IsRealFolder(from)) {
                    CopyFolder(from, to, true, true);
                    ok = true;
                } else {
                    ok = from && to && platform::CopyFile(from, to, false);
                }
                break;
            default: break;
        }
    } catch (exception const &) {
        ok = false;
    }
    if (!ok) Fail(u"file SHFileOperation");
}

string SelectFolder(void *owner) {
    std::u16string chosen = platform::ChooseFolder(u"フォルダの選択", owner);
    return string(chosen.c_str());
}

}  // namespace qor::tools::file
