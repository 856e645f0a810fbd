#pragma once

/// True if both texts are URIs with a host, and the hosts are equal, letter case included.
bool HaveEqualHosts(const char* firstUri, const char* secondUri);
