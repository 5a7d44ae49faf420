// The road of one table row on the embedded default database (SQLite through
// ODBC), from a profile file: connect, create a table, insert (one row with a
// blob), select with a condition, move, update, delete, fetch a whole result
// into an rset, and a transaction rolled back after an error.
//
//   qor_table_row [folder]     (a scratch folder by default)
#include <qor/tools.h>

#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <fstream>
#include <string>

using namespace qor::tools;
using namespace qor::tools::database;

namespace {

std::string Utf8(char16_t const *s) {
    string::converter c;
    return c.Utf8(s);
}

void Say(char const *step, string const &what) { std::printf("%-12s %s\n", step, Utf8(what.Safe()).c_str()); }

string Describe(record &r) {
    char16_t name[4096], photo[4096];
    r[u"name"].Text(name);
    r[u"photo"].Text(photo);
    return string::Formatter(u"id=%d name=%s photo=%s(%d bytes) stamped=%d %06d", int(r[u"id"]), name, photo,
                             r[u"photo"].GetBlobSize(), int(r[u"最終更新日付"]), int(r[u"最終更新時刻"]));
}

}  // namespace

int main(int argc, char **argv) {
    std::setlocale(LC_ALL, "C.UTF-8");
    std::string folder = argc > 1 ? argv[1] : "";
    if (folder.empty()) {
        char pattern[] = "/tmp/qor-example-XXXXXX";
        folder = ::mkdtemp(pattern);
    }
    std::string profile = folder + "/example.ini";
    std::ofstream(profile) << "[sql]\ndriver=SQLite3\nserver=embedded\ndatabase=" << folder
                           << "/example.db\nuser=example\npassword=\n";

    session db;
    string path(profile.c_str());
    if (!db.OpenFromProfile(path)) return 1;
    Say("connect", string::Formatter(u"%s on %s", db.DatabaseName().Safe(), db.Driver().Safe()));

    db.DropTable(u"people");
    session::texts columns, keys;
    for (auto c : {u"id integer not null", u"name varchar(40)", u"photo blob", u"最終更新日付 integer",
                   u"最終更新時刻 integer"}) {
        columns.Add(string(c));
    }
    keys.Add(string(u"id"));
    Say("create", db.CreateTable(u"people", columns, keys) ? string(u"table people") : string(u"failed"));

    command &people = db.Table(u"people", true);
    char16_t const *names[] = {u"山田太郎", u"佐藤花子", u"O'Brien \"quoted\"", u"鈴木一郎"};
    for (int i = 0; i < 4; ++i) {
        people.Clear();
        people[u"id"] = i + 1;
        people[u"name"] = names[i];
        if (i == 1) people[u"photo"].SetBlob("\x89PNG\r\n\x1a\n", 8);
        people.Insert(false);
    }
    Say("insert", string::Formatter(u"%d rows", int(people.Count())));

    if (people.Select(u"where id >= %d order by id", 2)) {
        Say("select", string::Formatter(u"%d rows where id >= 2", people.Rows()));
        while (people.MoveNext()) Say("  row", Describe(people));
    }
    people.MoveFirst();
    people[u"name"] = u"佐藤花子 (更新)";
    people.Update();
    people.MoveLast();
    Say("move last", Describe(people));
    people.Delete();
    Say("delete", string::Formatter(u"%d rows left", int(people.Count())));

    rset all;
    int n = people.RecordSet(all, u"order by id");
    Say("record set", string::Formatter(u"%d records in one block", n));
    for (int i = 0; i < n; ++i) Say("  record", Describe(all[i]));

    people.StartTransaction();
    try {
        people.Clear();
        people[u"id"] = 10;
        people[u"name"] = u"取り消される行";
        people.Insert(false);
        people[u"id"] = 1;  // the key is taken: the insert fails
        people.Insert(false);
    } catch (exception const &e) {
        Say("error", e.mMessage);
        try {
            db.TransactoinError(u"insert failed: %s", e.mMessage.Safe());
        } catch (exception const &) {
        }
    }
    people.EndTransaction();  // an error was reported: rolled back
    Say("rollback", string::Formatter(u"%d rows (row 10 is gone)", int(people.Count())));
    Say("done", string(folder.c_str()));
    return 0;
}
