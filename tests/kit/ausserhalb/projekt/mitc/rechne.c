int verdopple(int betrag);
int verdopple(int betrag) { return 2 * betrag; }
