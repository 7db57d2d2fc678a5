"""A laboratory of virtual machines that have SAS hardware, for tests of the provider on a real kernel."""
