// SPDX-License-Identifier: Apache-2.0
// A GTK program that has Pelvor's run loop served inside GLib's: its menu comes from the registry, and it
// counts words when nothing else is to be done. With "--once" it ends when the words are counted.
#include <gtk/gtk.h>

#include <cstdio>
#include <string_view>

#include "GLibRunLoop.h"
#include "Runtime/AutoreleasePool.h"
#include "TKDesk.h"

namespace {

using namespace pelvor;

void fillMenu(GtkWidget* item, const std::vector<std::string>& titles) {
    GtkWidget* menu = gtk_menu_new();
    for (const std::string& title : titles) {
        gtk_menu_shell_append(GTK_MENU_SHELL(menu), gtk_menu_item_new_with_label(title.c_str()));
        std::printf("menu item %s\n", title.c_str());
    }
    gtk_menu_item_set_submenu(GTK_MENU_ITEM(item), menu);
    gtk_widget_show_all(item);
}

}  // namespace

int main(int argc, char** argv) {
    if (!gtk_init_check(&argc, &argv)) return std::fputs("There is no display.\n", stderr), 1;
    const bool isOnce = argc > 1 && std::string_view(argv[1]) == "--once";
    AutoreleasePool pool;
    // Behind GTK's own events and drawing, so that "idle" means what the user would call idle.
    serveRunLoopInGLib(G_PRIORITY_DEFAULT_IDLE);

    GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 8);
    GtkWidget* bar = gtk_menu_bar_new();
    GtkWidget* palettes = gtk_menu_item_new_with_label("Palettes");
    GtkWidget* count = gtk_label_new("");
    gtk_menu_shell_append(GTK_MENU_SHELL(bar), palettes);
    gtk_container_add(GTK_CONTAINER(box), bar);
    gtk_container_add(GTK_CONTAINER(box), count);
    gtk_container_add(GTK_CONTAINER(window), box);
    g_signal_connect(window, "destroy", G_CALLBACK(gtk_main_quit), nullptr);

    auto desk = TKDesk::create();
    desk->showTitles = [palettes](const auto& titles) { fillMenu(palettes, titles); };
    desk->showCount = [count, isOnce](unsigned words, bool isDone) {
        const std::string text = std::to_string(words) + " words";
        gtk_label_set_text(GTK_LABEL(count), text.c_str());
        std::puts(text.c_str());
        if (isDone && isOnce) gtk_main_quit();
    };
    desk->start();
    gtk_widget_show_all(window);
    gtk_main();
}
