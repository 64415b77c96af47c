set(ZT_WARNINGS -Wall -Wextra)
