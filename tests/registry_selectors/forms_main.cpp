#include "../forms/forms_main.cpp"
