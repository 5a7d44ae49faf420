#include "qor/tools/file/find.h"

#include "platform/file_system.h"
#include "platform/folder_search.h"

namespace qor::tools::file {

namespace {

string Folder(char16_t const *folder) {
    string f(folder);
    int n = f.Length();
    if (n > 0 && (f[n - 1] == u'/' || f[n - 1] == u'\\')) return f;
    return string::Formatter(u"%s%s", f.Safe(), u"/");
}

}  // namespace

find::find(char16_t const *folder) : mFolder(Folder(folder)) { mPattern = string(mFolder.Safe(), u"*.*"); }

find::find(char16_t const *folder, char16_t const *mask) : mFolder(Folder(folder)) {
    mPattern = string(mFolder.Safe(), string::Safe(mask));
}

bool find::_First() {
    mStep = &find::_Next;
    mHandle = std::make_shared<platform::folder_search>();
    if (mHandle->First(mPattern, mEntry)) return true;
    mHandle.reset();
    return false;
}

bool find::_Next() { return mHandle && mHandle->Next(mEntry); }

void find::Close() {
    if (mHandle) mHandle->Close();
    mHandle.reset();
}

bool find::IsDots() const {
    string name(mEntry.cFileName);
    return name == u"." || name == u"..";
}

container::two<long, long> find::_Time(FILETIME const &time) {
    platform::calendar local{};
    if ((time.dwLowDateTime == 0 && time.dwHighDateTime == 0) || !platform::FileTimeToLocal(time, local)) {
        return {0, 0};
    }
    return {long((local.year * 100 + local.month) * 100 + local.day),
            long((local.hour * 100 + local.minute) * 100 + local.second)};
}

}  // namespace qor::tools::file
