// The program kesta.
int main() { return 0; }
