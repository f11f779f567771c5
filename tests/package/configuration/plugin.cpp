extern "C" int number()
{
    return 1;
}
