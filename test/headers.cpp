// Nothing of its own: the headers that all tests share are precompiled with this program.
int main() {
  return 0;
}
