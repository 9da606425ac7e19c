# free-row.pl PROCESS: prints a range of 20 ports, FIRST-LAST, that nobody uses, for a server to assign. Two servers
# with the same range would notify each other's users, so the range is reserved for PROCESS until that ends, by
# listening on the port before it. All ports are below the system's range of ephemeral ports.
use strict;
use warnings;
use IO::Socket::INET;

use constant { LOWEST => 20_000, ROWS => 600, COUNT => 20 };

sub listen_on {
    return IO::Socket::INET->new(LocalPort => shift, Listen => 1, Proto => 'tcp');
}

sub take_row {
    for (1 .. 10 * ROWS) {
        my $mark = LOWEST + int(rand ROWS) * (COUNT + 1);
        my $socket = listen_on($mark) or next;
        return ($socket, $mark + 1) unless grep { !listen_on($mark + $_) } 1 .. COUNT;
    }
    die "no row of free ports\n";
}

my $process = shift;
my ($socket, $first) = take_row();
defined(my $holder = fork) or die "no process to keep the ports: $!\n";
if ($holder) {
    print $first, '-', $first + COUNT - 1, "\n";
    exit;
}
# Nobody waits for the end of this output.
open $_, '+<', '/dev/null' or die for \*STDIN, \*STDOUT, \*STDERR;
sleep 1 while kill 0, $process;
