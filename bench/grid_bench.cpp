// The grid: the time from running the query to the first screen of a
// 1,000,000-row grid drawn in a window, and the memory it holds then, against
// the same query fetched into a record set with no window.
#include <benchmark/benchmark.h>
#include <gtk/gtk.h>
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "qor/tools/database/grid.h"
#include "qor/tools/database/session.h"
#include "qor/tools/platform/notice.h"

using namespace qor::tools;

namespace {

std::string const &Database() {
    static std::string path = [] {
        char pattern[] = "/tmp/qor-grid-bench-XXXXXX";
        std::string folder = ::mkdtemp(pattern);
        std::atexit([] { std::filesystem::remove_all(std::filesystem::path(Database()).parent_path()); });
        std::string file = folder + "/grid.db";
        SetNoticeHook([](char16_t const *, char16_t const *, unsigned) { return IDOK; });
        database::session db;
        db.Driver(u"SQLite3");
        std::u16string wide(file.begin(), file.end());
        db.Open(u"embedded", wide.c_str(), u"bench", u"");
        db.Execute(u"create table photos(id integer primary key, name varchar(40), width integer)");
        db.Execute(u"insert into photos with recursive n(i) as (select 0 union all select i + 1 from n "
                   u"where i < 999999) select i, 'photo ' || i, i * 3 from n");
        return file;
    }();
    return path;
}

// Resident memory now, in bytes.
double Resident() {
    std::ifstream statm("/proc/self/statm");
    long pages = 0, resident = 0;
    statm >> pages >> resident;
    return double(resident) * double(::sysconf(_SC_PAGESIZE));
}

// Resident memory once the heap has given back what earlier rounds freed
// (outside the timing), so that a round's growth is what it holds itself.
double Settled(benchmark::State &state) {
    state.PauseTiming();
    ::malloc_trim(0);
    double now = Resident();
    state.ResumeTiming();
    return now;
}

void Open(database::session &db) {
    db.Driver(u"SQLite3");
    std::u16string wide(Database().begin(), Database().end());
    db.Open(u"embedded", wide.c_str(), u"bench", u"");
}

void FirstScreenOfAMillionRows(benchmark::State &state) {
    if (!gtk_init_check(nullptr, nullptr)) {
        state.SkipWithError("no display");
        return;
    }
    Database();
    database::session db;
    Open(db);
    double held = 0;
    for (auto _ : state) {
        double before = Settled(state);
        database::grid g;
        g.Open(db, u"photos", false);
        g.InsertColumn(0, u"Name", LVCFMT_LEFT, u"name", nullptr, 160);
        g.InsertColumn(1, u"Width", LVCFMT_RIGHT, u"width", u"*,***,**9", 100);
        GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
        gtk_window_set_default_size(GTK_WINDOW(window), 400, 600);
        gtk_container_add(GTK_CONTAINER(window), g.Widget());
        bool drawn = false;
        g_signal_connect_after(g.View(), "draw", G_CALLBACK(+[](GtkWidget *, cairo_t *, gpointer flag) {
                                   *static_cast<bool *>(flag) = true;
                                   return FALSE;
                               }),
                               &drawn);
        g.RecordSet(u"order by id");
        gtk_widget_show_all(window);
        while (!drawn) g_main_context_iteration(nullptr, TRUE);
        held = Resident() - before;
        gtk_widget_destroy(window);
        while (g_main_context_pending(nullptr)) g_main_context_iteration(nullptr, FALSE);
    }
    state.counters["held_MB"] = held / 1e6;
    state.SetItemsProcessed(state.iterations() * 1000000);
}

void FirstScreenOfAMillionRows_Anchor(benchmark::State &state) {
    Database();
    database::session db;
    Open(db);
    double held = 0;
    for (auto _ : state) {
        double before = Settled(state);
        database::command photos;
        photos.Open(db, u"photos", false);
        database::rset rows;
        photos.RecordSet(rows, u"order by id");
        held = Resident() - before;
        benchmark::DoNotOptimize(rows.Size());
    }
    state.counters["held_MB"] = held / 1e6;
    state.SetItemsProcessed(state.iterations() * 1000000);
}

}  // namespace

BENCHMARK(FirstScreenOfAMillionRows)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(FirstScreenOfAMillionRows_Anchor)->Unit(benchmark::kMillisecond)->Iterations(3);
