// Placeholder until the main window lands.
int main() { return 0; }
