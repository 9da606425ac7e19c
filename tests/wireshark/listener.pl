# listener.pl COUNT: listens on COUNT ports of loopback that follow each other until its standard input ends. Prints the
# first port, and then for each notification and probe the port and the printable characters. Answers probes.
use strict;
use warnings;
use IO::Select;
use IO::Socket::INET;

sub listen_on {
    my $port = shift;
    return IO::Socket::INET->new(LocalAddr => '127.0.0.1', LocalPort => $port, Listen => 5, Proto => 'tcp');
}

# The system picks the first port; the next ones are free more often than not.
sub listen_on_row {
    my $count = shift;
    for (1 .. 50) {
        my @row = (listen_on(0));
        push @row, listen_on($row[0]->sockport + @row) while @row < $count and $row[-1];
        return @row if $row[-1];
    }
    die "no $count free ports in a row\n";
}

my @row = listen_on_row(shift);
my $probe = pack 'l<l<', 1, 0;
my %is_listening = map { $_ => 1 } @row;
$| = 1;
print $row[0]->sockport, "\n";

# take_frame BYTES: removes and returns the first whole frame; nothing when there is none yet.
sub take_frame {
    return if length $_[0] < 8;
    my (undef, $length) = unpack 'l<l<', $_[0];
    return if length $_[0] < 8 + $length;
    return substr $_[0], 0, 8 + $length, '';
}

my %bytes_of;
my $all = IO::Select->new(\*STDIN, @row);
while (1) {
    for my $ready ($all->can_read) {
        if ($is_listening{$ready}) {
            my $accepted = $ready->accept;
            $all->add($accepted);
            $bytes_of{$accepted} = '';
        } elsif (!sysread $ready, my $piece, 65536) {
            exit 0 if $ready == \*STDIN;
            $all->remove($ready);
            delete $bytes_of{$ready};
        } else {
            $bytes_of{$ready} .= $piece;
            while (defined(my $frame = take_frame($bytes_of{$ready}))) {
                syswrite $ready, pack('l<', 512) if $frame eq $probe;
                $frame =~ tr/ -~//cd;
                print $ready->sockport, " $frame\n";
            }
        }
    }
}
