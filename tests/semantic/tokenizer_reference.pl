#!/usr/bin/perl
# The tokenizer's rules a second time, in another language and from other building blocks: Perl's own grapheme
# clusters (\X), scalars, lower case and blanks. Reads a vocabulary and texts, writes tokens, ids and masks.
#
#   perl tokenizer_reference.pl VOCABULARY TEXTS LENGTH
#
# Texts and tokens are UTF-8 in hexadecimal. A vocabulary line is "<token> <id>", a text line "<text>", an
# output line "<token>,<token>,...|<id>,<id>,...|<mask>,<mask>,...", each token with an "x" in front.
use strict;
use warnings;
use Encode qw(decode encode);

my ($vocabularyFile, $textsFile, $length) = @ARGV;
my %vocabulary;
open(my $vocabularyLines, '<', $vocabularyFile) or die "no vocabulary: $!";
while (my $line = <$vocabularyLines>) {
    chomp $line;
    my ($token, $id) = split / /, $line, -1;
    $vocabulary{text($token)} = $id;
}
my $isChinese = exists $vocabulary{'[CLS]'} && exists $vocabulary{'[SEP]'};
my $hasPrefix = grep { substr($_, 0, 1) eq "\x{120}" } keys %vocabulary;
my $hasSuffix = grep { length($_) >= 4 && substr($_, -4) eq '</w>' } keys %vocabulary;
my $longest = longestKey();

open(my $texts, '<', $textsFile) or die "no texts: $!";
while (my $line = <$texts>) {
    chomp $line;
    my @tokens = $isChinese ? chineseTokens(text($line)) : openaiTokens(text($line));
    my ($ids, $mask) = $isChinese ? encodeChinese(@tokens) : encodeOpenai(@tokens);
    print join(',', map { 'x' . unpack('H*', encode('UTF-8', $_)) } @tokens), '|',
        join(',', @$ids), '|', join(',', @$mask), "\n";
}

sub text { return decode('UTF-8', pack('H*', $_[0])); }

sub clusters { my @all = $_[0] =~ /\X/g; return @all; }

sub longestKey {
    my $most = -1;
    for my $key (keys %vocabulary) {
        my $count = () = clusters($key);
        $most = $count if $count > $most;
    }
    return $most < 0 ? 1 : $most;
}

# The zero-width space is a blank as well, a vertical tab and a next-line are line ends.
sub isBlank { return $_[0] =~ /\A[\p{Z}\x{9}-\x{D}\x{85}\x{200B}]*\z/; }

sub chineseTokens {
    my @left = clusters($_[0]);
    my @tokens = ('[CLS]');
    while (@left) {
        my ($best) = grep { $_ <= @left && exists $vocabulary{join('', @left[0 .. $_ - 1])} } 4, 3, 2, 1;
        my $token = join('', splice(@left, 0, $best // 1));
        push @tokens, $token if defined $best || !isBlank($token);
    }
    return (@tokens, '[SEP]');
}

sub openaiTokens {
    my ($text) = @_;
    # Scalar by scalar: no rule that looks at the neighbours (a final sigma) applies.
    my @scalars = map { split //, lc $_ } split //, $text;
    my @tokens;
    my $place = 0;
    while ($place < @scalars) {
        if (isBlank($scalars[$place])) { $place++; next; }
        my $end = $place;
        $end++ while $end < @scalars && !isBlank($scalars[$end]);
        push @tokens, wordTokens($place >= 1, @scalars[$place .. $end - 1]);
        $place = $end;
    }
    return @tokens;
}

sub wordTokens {
    my ($isLater, @word) = @_;
    my @tokens;
    my $p = 0;
    while ($p < @word) {
        my $rest = @word - $p;
        my $limit = $rest < $longest ? $rest : $longest;
        my ($token, $taken);
        for my $L (reverse 1 .. $limit) {
            my $s = join('', @word[$p .. $p + $L - 1]);
            my @candidates;
            push @candidates, "\x{120}$s" if $isLater && $p == 0 && $hasPrefix;
            push @candidates, "$s</w>" if $p + $L == @word && $hasSuffix;
            push @candidates, $s;
            ($token) = grep { exists $vocabulary{$_} } @candidates;
            if (defined $token) { $taken = $L; last; }
        }
        push @tokens, $token if defined $token;
        $p += $taken // 1;
    }
    return @tokens;
}

sub encodeChinese {
    my @tokens = @_;
    splice(@tokens, $length) if @tokens > $length;
    my @ids = map { $vocabulary{$_} // $vocabulary{'[UNK]'} // 0 } @tokens;
    return padded($vocabulary{'[PAD]'} // 0, @ids);
}

sub encodeOpenai {
    my @ids = (49406);
    for my $token (@_) {
        if (exists $vocabulary{$token}) { push @ids, $vocabulary{$token}; next; }
        (my $bare = $token) =~ s/^\x{120}+//;
        push @ids, $vocabulary{$bare} if exists $vocabulary{$bare};
    }
    push @ids, 49407;
    splice(@ids, $length) if @ids > $length;
    return padded(0, @ids);
}

sub padded {
    my ($pad, @ids) = @_;
    my $missing = $length - @ids;
    my @mask = ((1) x @ids, (0) x $missing);
    return ([@ids, ($pad) x $missing], \@mask);
}
