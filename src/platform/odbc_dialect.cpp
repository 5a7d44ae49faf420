#include "odbc_dialect.h"

#include "../text_case.h"

namespace qor::tools::platform::odbc {

namespace {

std::u16string Number(long long n) {
    std::string s = std::to_string(n);
    return std::u16string(s.begin(), s.end());
}

// An attribute value in braces, a closing brace doubled.
std::u16string Quoted(std::u16string const &value) {
    std::u16string out = u"{";
    for (char16_t c : value) {
        out += c;
        if (c == u'}') out += u'}';
    }
    return out + u"}";
}

// A value of libpq's connection options: in single quotes, with a quote or
// backslash escaped, and any '}' doubled for the braces around the option list.
std::u16string LibpqQuoted(std::u16string const &value) {
    std::u16string out = u"'";
    for (char16_t c : value) {
        if (c == u'\\' || c == u'\'') out += u'\\';
        out += c;
        if (c == u'}') out += u'}';
    }
    return out + u"'";
}

bool IsPlain(std::u16string const &value) {
    for (char16_t c : value) {
        bool plain = (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'.' ||
                     c == u'-' || c == u'_' || c == u':';
        if (!plain) return false;
    }
    return true;
}

bool StartsWord(std::u16string const &sql, std::size_t at, std::u16string_view word) {
    if (at + word.size() > sql.size()) return false;
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (detail::AsciiLower(sql[at + i]) != word[i]) return false;
    }
    auto isWordUnit = [](char16_t c) {
        char16_t l = detail::AsciiLower(c);
        return l == u'_' || (l >= u'0' && l <= u'9') || (l >= u'a' && l <= u'z');
    };
    bool before = at == 0 || !isWordUnit(sql[at - 1]);
    bool after = at + word.size() == sql.size() || !isWordUnit(sql[at + word.size()]);
    return before && after;
}

}  // namespace

dialect dialect::ForDriver(std::u16string const &driver) {
    std::u16string name = detail::AsciiLower(driver);
    if (name.find(u"sqlite") != std::u16string::npos) return dialect(kind::sqlite);
    if (name.find(u"postgres") != std::u16string::npos) return dialect(kind::postgresql);
    return dialect(kind::sqlserver);
}

// ---------------------------------------------------------------- statements

std::u16string dialect::LockHint(bool updatable) const {
    if (mKind != kind::sqlserver) return u"";
    return updatable ? u"with (updlock,rowlock)" : u"with (nolock)";
}

std::u16string dialect::Select(std::u16string const &table, std::u16string const &hint,
                               std::u16string const &condition, bool withCondition) const {
    std::u16string sql = u"select * from " + table + u" " + hint;
    if (withCondition) sql += u" " + condition;
    return sql;
}

std::u16string dialect::SelectTop(int top, std::u16string const &table, std::u16string const &hint,
                                  std::u16string const &condition, bool withCondition) const {
    if (mKind == kind::sqlserver) {
        std::u16string sql = u"select top " + Number(top) + u" * from " + table + u" " + hint;
        if (withCondition) sql += u" " + condition;
        return sql;
    }
    return Select(table, hint, condition, withCondition) + u" limit " + Number(top);
}

std::u16string dialect::SelectNone(std::u16string const &table) const {
    if (mKind == kind::sqlserver) return u"select top 0 * from " + table;
    return u"select * from " + table + u" limit 0";
}

std::u16string dialect::Count(std::u16string const &table, std::u16string const &condition,
                              bool withCondition) const {
    std::u16string sql = u"select count(*) from " + table + (mKind == kind::sqlserver ? u" with(nolock)" : u"");
    if (withCondition) sql += u" " + condition;
    return sql;
}

std::u16string dialect::CountColumn(std::u16string const &column, std::u16string const &table, bool distinct,
                                    std::u16string const &condition, bool withCondition) const {
    std::u16string quantifier = distinct ? u"distinct" : (mKind == kind::sqlite ? u"" : u"all");
    std::u16string sql = u"select count(" + quantifier + u" " + column + u") from " + table +
                         (mKind == kind::sqlserver ? u" with(nolock)" : u"");
    if (withCondition) sql += u" " + condition;
    return sql;
}

std::u16string dialect::PrimaryKeyClause(std::u16string const &table) const {
    return u",constraint PK_" + table + (mKind == kind::sqlserver ? u" primary key clustered (" : u" primary key (");
}

// ---------------------------------------------------------------- the connection

std::u16string dialect::ConnectionString(std::u16string const &driver, std::u16string const &server,
                                         std::u16string const &database, std::u16string const &user,
                                         std::u16string const *password) const {
    std::u16string text = u"Driver=" + Quoted(driver) + u";";
    if (mKind == kind::sqlite) return text + u"Database=" + database + u";Timeout=5000;";
    std::u16string host = server, port;
    std::size_t split = host.find_last_of(u",:");
    if (split != std::u16string::npos) {
        port = host.substr(split + 1);
        host = host.substr(0, split);
    }
    if (mKind == kind::postgresql) {
        // psqlodbc takes braces around a password only: the other values go
        // to libpq in its own quoting, through psqlodbc's pqopt.
        std::u16string options = u"dbname=" + LibpqQuoted(database) + u" user=" + LibpqQuoted(user);
        if (IsPlain(host) && IsPlain(port)) {
            text += u"Server=" + host + u";";
            if (!port.empty()) text += u"Port=" + port + u";";
        } else {
            options += u" host=" + LibpqQuoted(host);
            if (!port.empty()) options += u" port=" + LibpqQuoted(port);
        }
        // Inside a transaction psqlodbc sets a savepoint before each
        // statement, so that a failed one is undone alone (as on the other
        // databases). With server-side prepared statements that savepoint is
        // a round trip of its own; with UseServerSidePrepare=0 the driver
        // writes the parameters into the statement as escaped literals and
        // sends savepoint and statement in one message: one round trip a row
        // written instead of two. The library still hands every value over
        // as a parameter.
        text += u"pqopt={" + options + u"};UseServerSidePrepare=0;";
        if (password) text += u"Pwd=" + Quoted(*password) + u";";
        return text;
    }
    text += u"Server=" + Quoted(host) + u";";
    if (!port.empty()) text += u"Port=" + Quoted(port) + u";";
    text += u"Database=" + Quoted(database) + u";Uid=" + Quoted(user) + u";";
    if (password) text += u"Pwd=" + Quoted(*password) + u";";
    return text + u"ClientCharset=UTF-8;";
}

// ---------------------------------------------------------------- scripts

std::vector<std::u16string> dialect::Statements(std::u16string const &sql) const {
    if (mKind != kind::sqlite) return {sql};
    std::vector<std::u16string> parts;
    std::u16string current;
    int depth = 0;  // BEGIN ... END of trigger bodies (CASE ... END nests too)
    auto flush = [&] {
        if (current.find_first_not_of(u" \t\r\n") != std::u16string::npos) parts.push_back(current);
        current.clear();
    };
    for (std::size_t i = 0; i < sql.size(); ++i) {
        char16_t c = sql[i];
        if (c == u'\'' || c == u'"' || c == u'`' || c == u'[') {
            char16_t close = c == u'[' ? u']' : c;
            std::size_t end = sql.find(close, i + 1);
            if (end == std::u16string::npos) end = sql.size() - 1;
            current += sql.substr(i, end - i + 1);
            i = end;
        } else if (c == u'-' && i + 1 < sql.size() && sql[i + 1] == u'-') {
            std::size_t end = sql.find(u'\n', i);
            i = end == std::u16string::npos ? sql.size() : end;
            current += u'\n';
        } else if (c == u'/' && i + 1 < sql.size() && sql[i + 1] == u'*') {
            std::size_t end = sql.find(u"*/", i + 2);
            i = end == std::u16string::npos ? sql.size() : end + 1;
            current += u' ';
        } else if (c == u';' && depth == 0) {
            flush();
        } else {
            if (StartsWord(sql, i, u"begin") || StartsWord(sql, i, u"case")) {
                // A transaction's BEGIN stands alone (or with TRANSACTION, DEFERRED, ...) before a semicolon.
                bool transaction = false;
                if (StartsWord(sql, i, u"begin")) {
                    std::size_t next = sql.find_first_not_of(u" \t\r\n", i + 5);
                    transaction = next == std::u16string::npos || sql[next] == u';' ||
                                  StartsWord(sql, next, u"transaction") || StartsWord(sql, next, u"deferred") ||
                                  StartsWord(sql, next, u"immediate") || StartsWord(sql, next, u"exclusive");
                }
                if (!transaction) ++depth;
            } else if (StartsWord(sql, i, u"end") && depth > 0) {
                --depth;
            }
            current += c;
        }
    }
    flush();
    return parts;
}

dialect::guard dialect::ScriptGuard(std::vector<std::u16string> const &statements) const {
    if (mKind != kind::sqlite || statements.size() < 2) return {};
    for (std::u16string const &one : statements) {
        std::size_t at = one.find_first_not_of(u" \t\r\n");
        for (std::u16string_view word : {u"begin", u"commit", u"end", u"rollback", u"savepoint", u"release"}) {
            if (at != std::u16string::npos && StartsWord(one, at, word)) return {};
        }
    }
    return {u"savepoint qor_script", u"release qor_script", u"rollback to qor_script"};
}

// ---------------------------------------------------------------- keys and identities

std::u16string dialect::PrimaryKeysQuery(std::u16string const &table) const {
    if (mKind == kind::sqlite) return u"select name from pragma_table_info('" + table + u"') where pk > 0 order by pk";
    if (mKind == kind::postgresql) {
        return u"select a.attname from pg_index i join pg_attribute a on a.attrelid = i.indrelid and a.attnum = "
               u"any(i.indkey) where i.indisprimary and i.indrelid = to_regclass('" + table + u"') "
               u"order by array_position(i.indkey::int2[], a.attnum)";
    }
    return u"select c.name from sys.index_columns ic join sys.indexes i on i.object_id = ic.object_id and "
           u"i.index_id = ic.index_id join sys.columns c on c.object_id = ic.object_id and c.column_id = ic.column_id "
           u"where i.is_primary_key = 1 and ic.object_id = object_id('" + table + u"') order by ic.key_ordinal";
}

std::u16string dialect::IdentityColumn() const {
    if (mKind == kind::sqlite) return u"rowid";
    if (mKind == kind::postgresql) return u"ctid::text";
    return {};
}

std::u16string dialect::IdentityCondition() const {
    return mKind == kind::sqlite ? u"rowid=?" : u"ctid=cast(? as tid)";
}

// ---------------------------------------------------------------- inserted rows

std::u16string dialect::ReturningClause(std::u16string const &extra) const {
    return mKind == kind::postgresql ? u" returning *" + extra : u"";
}

std::u16string dialect::ReturningSuffix(std::u16string const &extra) const {
    return mKind == kind::postgresql ? u" returning " + extra : u"";
}

std::u16string dialect::LastInserted(std::u16string const &table, std::u16string const &extra) const {
    if (mKind != kind::sqlite) return {};
    return u"select *" + extra + u" from " + table + u" where rowid = last_insert_rowid()";
}

}  // namespace qor::tools::platform::odbc
