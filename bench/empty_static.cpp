// The least that starting a process can take: linked statically, and does nothing.
int main() {}
