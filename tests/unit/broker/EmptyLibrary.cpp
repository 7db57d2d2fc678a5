extern "C" int brokerTestEmpty() { return 0; }
