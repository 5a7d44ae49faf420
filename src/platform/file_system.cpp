#include "file_system.h"

#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <mutex>

#include <gio/gio.h>
#include <gtk/gtk.h>

#include "../utf8.h"
#include "file_io.h"

namespace qor::tools::platform {

namespace {

constexpr std::int64_t kEpochDifference = 11644473600LL;  // seconds from 1601 to 1970

FILETIME ToFileTime(statx_timestamp const &t) {
    std::uint64_t ticks = std::uint64_t((t.tv_sec + kEpochDifference) * 10000000LL + t.tv_nsec / 100);
    return {DWORD(ticks & 0xFFFFFFFFu), DWORD(ticks >> 32)};
}

timespec ToTimespec(FILETIME const &f) {
    std::int64_t ticks = std::int64_t((std::uint64_t(f.dwHighDateTime) << 32) | f.dwLowDateTime);
    timespec ts{};
    ts.tv_sec = ticks / 10000000 - kEpochDifference;
    ts.tv_nsec = long(ticks % 10000000) * 100;
    return ts;
}

bool Stat(std::string const &path, struct statx &st) {
    return ::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW,
                   STATX_TYPE | STATX_MODE | STATX_SIZE | STATX_ATIME | STATX_MTIME | STATX_BTIME, &st) == 0;
}

DWORD Attributes(struct statx const &st, char const *name) {
    DWORD a = 0;
    if (S_ISDIR(st.stx_mode)) a |= FILE_ATTRIBUTE_DIRECTORY;
    if (!(st.stx_mode & S_IWUSR)) a |= FILE_ATTRIBUTE_READONLY;
    if (name[0] == '.' && std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0) a |= FILE_ATTRIBUTE_HIDDEN;
    if (a == 0) a = FILE_ATTRIBUTE_NORMAL;
    return a;
}

char const *BaseName(std::string const &path) {
    std::size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path.c_str() : path.c_str() + slash + 1;
}

std::u16string Wide(char const *s) {
    std::u16string out;
    detail::Utf8ToUtf16(s, std::strlen(s), out);
    return out;
}

// The platform's wildcards: '*' and '?', without regard to ASCII case; "*.*"
// and "*" are every entry.
bool Matches(std::u16string const &mask, char16_t const *name) {
    if (mask == u"*.*" || mask == u"*") return true;
    std::string m, n;
    detail::Utf16ToUtf8(mask.data(), mask.size(), m);
    detail::Utf16ToUtf8(name, std::char_traits<char16_t>::length(name), n);
    return ::fnmatch(m.c_str(), n.c_str(), FNM_CASEFOLD) == 0;
}

}  // namespace

bool Exists(char16_t const *path) {
    struct statx st {};
    return path && Stat(PathBytes(path), st);
}

bool IsDirectory(char16_t const *path) {
    struct stat st {};
    return path && ::stat(PathBytes(path).c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool GetAttributes(char16_t const *path, DWORD &attributes) {
    struct statx st {};
    std::string p = PathBytes(path);
    if (!path || !Stat(p, st)) return false;
    attributes = Attributes(st, BaseName(p));
    return true;
}

bool SetAttributes(char16_t const *path, DWORD attributes) {
    std::string p = PathBytes(path);
    struct stat st {};
    if (!path || ::stat(p.c_str(), &st) != 0) return false;
    mode_t mode = st.st_mode & 07777;
    mode = (attributes & FILE_ATTRIBUTE_READONLY) ? mode & ~mode_t(S_IWUSR | S_IWGRP | S_IWOTH) : mode | S_IWUSR;
    return ::chmod(p.c_str(), mode) == 0;
}

bool GetTimes(char16_t const *path, FILETIME &creation, FILETIME &access, FILETIME &write) {
    struct statx st {};
    if (!path || !Stat(PathBytes(path), st)) return false;
    creation = ToFileTime((st.stx_mask & STATX_BTIME) ? st.stx_btime : st.stx_mtime);
    access = ToFileTime(st.stx_atime);
    write = ToFileTime(st.stx_mtime);
    return true;
}

bool SetTimes(char16_t const *path, FILETIME const &access, FILETIME const &write) {
    timespec times[2] = {ToTimespec(access), ToTimespec(write)};
    return path && ::utimensat(AT_FDCWD, PathBytes(path).c_str(), times, 0) == 0;
}

bool MoveFile(char16_t const *from, char16_t const *to, bool replace) {
    std::string f = PathBytes(from), t = PathBytes(to);
    if (!replace && Exists(to)) return false;
    if (::rename(f.c_str(), t.c_str()) == 0) return true;
    if (errno != EXDEV) return false;
    // Another file system: copy, make sure it is on disk, then remove the source.
    if (!CopyFile(from, to, !replace)) return false;
    int fd = ::open(t.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
    return ::unlink(f.c_str()) == 0;
}

bool CopyFile(char16_t const *from, char16_t const *to, bool failIfExists) {
    std::error_code error;
    auto options = failIfExists ? std::filesystem::copy_options::none
                                : std::filesystem::copy_options::overwrite_existing;
    std::filesystem::copy_file(PathBytes(from), PathBytes(to), options, error);
    return !error;
}

bool CreateDirectory(char16_t const *path) { return path && ::mkdir(PathBytes(path).c_str(), 0777) == 0; }

bool RemoveDirectory(char16_t const *path) { return path && ::rmdir(PathBytes(path).c_str()) == 0; }

bool RemoveFile(char16_t const *path) { return path && ::unlink(PathBytes(path).c_str()) == 0; }

bool Rename(char16_t const *from, char16_t const *to) {
    return from && to && ::rename(PathBytes(from).c_str(), PathBytes(to).c_str()) == 0;
}

bool Trash(char16_t const *path) {
    if (!path) return false;
    GFile *file = g_file_new_for_path(PathBytes(path).c_str());
    GError *error = nullptr;
    gboolean ok = g_file_trash(file, nullptr, &error);
    if (error) g_error_free(error);
    g_object_unref(file);
    return ok;
}

namespace {
std::mutex gChooserLock;
std::function<void(void *)> gChooserHook;
}  // namespace

void SetFolderChooserHook(std::function<void(void *dialog)> hook) {
    std::lock_guard lock(gChooserLock);
    gChooserHook = std::move(hook);
}

std::u16string ChooseFolder(char16_t const *title, void *owner) {
    if (!gtk_init_check(nullptr, nullptr)) return {};
    std::string caption = PathBytes(title);
    GtkWidget *dialog = gtk_file_chooser_dialog_new(caption.c_str(), owner ? GTK_WINDOW(owner) : nullptr,
                                                    GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER, "_Cancel",
                                                    GTK_RESPONSE_CANCEL, "_Select", GTK_RESPONSE_ACCEPT, nullptr);
    std::function<void(void *)> hook;
    {
        std::lock_guard lock(gChooserLock);
        hook = gChooserHook;
    }
    if (hook) hook(dialog);
    std::u16string result;
    if (gtk_dialog_run(GTK_DIALOG(dialog)) == GTK_RESPONSE_ACCEPT) {
        if (char *name = gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(dialog))) {
            result = Wide(name);
            g_free(name);
        }
    }
    gtk_widget_destroy(dialog);
    while (gtk_events_pending()) gtk_main_iteration();
    return result;
}

bool FileTimeToLocal(FILETIME const &time, calendar &local) {
    timespec ts = ToTimespec(time);
    std::tm t{};
    if (!localtime_r(&ts.tv_sec, &t)) return false;
    local = {t.tm_year + 1900, t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec};
    return true;
}

// ---------------------------------------------------------------- folder search

folder_search::~folder_search() { Close(); }

void folder_search::Close() {
    if (mDir) ::closedir(static_cast<DIR *>(mDir));
    mDir = nullptr;
}

bool folder_search::First(char16_t const *pattern, WIN32_FIND_DATAW &entry) {
    Close();
    std::u16string p = pattern ? pattern : u"";
    std::size_t slash = p.find_last_of(u"/\\");
    std::u16string folder = slash == std::u16string::npos ? u"." : p.substr(0, slash + 1);
    mMask = slash == std::u16string::npos ? p : p.substr(slash + 1);
    mFolder = PathBytes(folder.c_str());
    if (mFolder.empty()) mFolder = "/";
    mDir = ::opendir(mFolder.c_str());
    if (!mDir) return false;
    if (_Fill(entry)) return true;
    Close();
    return false;
}

bool folder_search::Next(WIN32_FIND_DATAW &entry) { return mDir && _Fill(entry); }

bool folder_search::_Fill(WIN32_FIND_DATAW &entry) {
    while (dirent *d = ::readdir(static_cast<DIR *>(mDir))) {
        std::u16string name = Wide(d->d_name);
        if (!Matches(mMask, name.c_str())) continue;
        std::string full = mFolder + (mFolder.back() == '/' ? "" : "/") + d->d_name;
        struct statx st {};
        if (!Stat(full, st)) continue;
        std::memset(&entry, 0, sizeof entry);
        entry.dwFileAttributes = Attributes(st, d->d_name);
        entry.ftCreationTime = ToFileTime((st.stx_mask & STATX_BTIME) ? st.stx_btime : st.stx_mtime);
        entry.ftLastAccessTime = ToFileTime(st.stx_atime);
        entry.ftLastWriteTime = ToFileTime(st.stx_mtime);
        entry.nFileSizeHigh = DWORD(st.stx_size >> 32);
        entry.nFileSizeLow = DWORD(st.stx_size & 0xFFFFFFFFu);
        std::size_t n = name.size() < 259 ? name.size() : 259;
        std::memcpy(entry.cFileName, name.data(), n * sizeof(char16_t));
        return true;
    }
    return false;
}

}  // namespace qor::tools::platform
