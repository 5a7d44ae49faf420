// Uses the installed library through its umbrella header.
#include <qor/tools.h>

#include <cstdio>

int main() {
    qor::tools::string s(u"consumer");
    s.Format(u"%s:%d", u"installed", 42);
    try {
        throw qor::tools::exception(u"failure %d", 7);
    } catch (qor::tools::exception const &e) {
        if (e.mMessage != u"failure 7" || s != u"installed:42") return 1;
    }
    std::puts("installed library works");
    return 0;
}
