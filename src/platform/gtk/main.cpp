#include "application_gtk.hpp"

int main(int argc, char** argv) {
    brindex::gtk::ApplicationGtk application;
    return application.executer(argc, argv);
}
