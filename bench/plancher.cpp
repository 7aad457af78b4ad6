// The floor of the benchmark: a bare GTK 4 window holding one WebKitGTK 6.0 view, drawn the
// lightest way (cairo, no compositing), that loads the address it is given. Nothing else.
#include <gtk/gtk.h>
#include <webkit/webkit.h>

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    g_setenv("GSK_RENDERER", "cairo", FALSE);
    GtkApplication* application = gtk_application_new(nullptr, G_APPLICATION_NON_UNIQUE);
    g_signal_connect(application, "activate", G_CALLBACK(+[](GApplication* a, gpointer adresse) {
                         GtkWidget* fenetre = gtk_application_window_new(GTK_APPLICATION(a));
                         gtk_window_set_default_size(GTK_WINDOW(fenetre), 1280, 860);
                         WebKitSettings* reglages = webkit_settings_new();
                         webkit_settings_set_hardware_acceleration_policy(
                             reglages, WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
                         GtkWidget* vue = GTK_WIDGET(
                             g_object_new(WEBKIT_TYPE_WEB_VIEW, "settings", reglages, nullptr));
                         g_object_unref(reglages);
                         gtk_window_set_child(GTK_WINDOW(fenetre), vue);
                         webkit_web_view_load_uri(WEBKIT_WEB_VIEW(vue),
                                                  static_cast<const char*>(adresse));
                         gtk_window_present(GTK_WINDOW(fenetre));
                     }),
                     argv[1]);
    char* seul[] = {argv[0], nullptr};
    const int statut = g_application_run(G_APPLICATION(application), 1, seul);
    g_object_unref(application);
    return statut;
}
